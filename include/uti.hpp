/*
 * uti.hpp: the library of uti.h for applications in C++17 and later, typed.
 *
 * Every operation here is inline and ends in the C call that its description names; both faces may
 * be mixed at will, and what is not here is called in C. The results are those of uti.h.
 *
 * Contents
 *
 *   Texts, bytes, answers   Text, CText, Bytes, Answer
 *   Resources               Message, Module, setLanguage, format
 *   Trace log               trace::error, trace::support, trace::debug, trace::Log
 *   Monitoring log          monitor::write, monitor::Log
 *   Dialogs                 Dialog; show, confirm, select, edit, choose, sign
 *   INI files               Ini
 *   Storage                 Storage
 *   List                    List, each
 *   BER-TLV                 bertlv::objects, bertlv::find, bertlv::append
 *   USSD and SMS            gsm::ussd, gsm::sms
 *
 * Conventions
 *
 *  1. Nothing throws, and nothing needs exceptions or run-time type information: the header is made
 *     for -fno-exceptions -fno-rtti as well. A callback of yours must not throw through the
 * library.
 *  2. What would be wrong at run time does not compile where the types tell it, and the compiler's
 *     message begins with "uti:".
 *  3. A text may be given as a literal, a `char` pointer, a `std::string` or a `std::string_view`,
 *     temporary or not: what outlives the expression is copied. A text ends at its first zero.
 *  4. Owners (`Module`, `Storage`, `List`, the two `Log`s) release in their destructor what they
 *     hold; they can be moved, not copied.
 *  5. `uti::Storage` and `uti::List` share their names with uti.h: write them with the namespace,
 *     even behind `using namespace uti`.
 *  6. Structures are aggregates. C++20 names their fields, `{.id = SHOP_PIN, .timeout = 5000}`; in
 *     C++17 make one and set them.
 */
#ifndef UTI_HPP
#define UTI_HPP

#include "uti.h"

#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <initializer_list>
#include <limits>
#include <new>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>
#if __cplusplus >= 202002L
#include <span>
#endif

namespace uti {

/* ============================================================= texts, bytes, answers ==== */

#if __cplusplus >= 202002L
/** Bytes of somebody else. */
using Bytes = std::span<const uint8_t>;
/** Bytes of somebody else, to be written. */
using Room = std::span<uint8_t>;
#else
namespace detail {
/* As much of std::span as this header speaks of, for C++17. */
template <class Byte>
class Span {
public:
    constexpr Span() = default;
    constexpr Span(Byte *data, std::size_t size) : data_(data), size_(size) {}
    template <std::size_t size>
    constexpr Span(Byte (&bytes)[size]) : data_(bytes), size_(size) {}
    template <class Range, class = decltype(std::declval<Range &>().data())>
    constexpr Span(Range &&range) : data_(range.data()), size_(range.size()) {}

    constexpr Byte *data() const { return data_; }
    constexpr std::size_t size() const { return size_; }
    constexpr bool empty() const { return size_ == 0; }
    constexpr Byte *begin() const { return data_; }
    constexpr Byte *end() const { return data_ + size_; }
    constexpr Byte &operator[](std::size_t index) const { return data_[index]; }
    constexpr Span first(std::size_t count) const { return {data_, count}; }
    constexpr Span subspan(std::size_t from) const { return {data_ + from, size_ - from}; }

private:
    Byte *data_ = nullptr;
    std::size_t size_ = 0;
};
} // namespace detail
using Bytes = detail::Span<const uint8_t>;
using Room = detail::Span<uint8_t>;
#endif

/** A text that is kept, or none. No text is what a null pointer is in uti.h: most often "as the
 *  description says"; an empty text is a text.
 *
 *      Text greeting = shop.text(SHOP_HELLO);   // a copy, whatever happens to the original
 */
class Text {
public:
    Text() = default;
    Text(std::nullptr_t) {}
    Text(const char *text) : text_(text ? text : ""), isThere_(text != nullptr) {}
    Text(std::string text) : text_(std::move(text)), isThere_(true) {}
    Text(std::string_view text) : text_(text), isThere_(true) {}

    /** The text with its zero, or null. It lives as long as this object and its value. */
    const char *get() const { return isThere_ ? text_.c_str() : nullptr; }
    explicit operator bool() const { return isThere_; }

private:
    std::string text_;
    bool isThere_ = false;
};

/** A text on its way into a call: what parameters are declared as. A view is copied, since it may
 *  lack the zero: into the object itself up to 127 bytes, else to memory of its own (and cut to
 *  those 127 when there is none); everything else is passed on as it is. */
class CText {
public:
    CText(const char *text) : text_(text) {}
    CText(const std::string &text) : text_(text.c_str()) {}
    CText(const Text &text) : text_(text.get()) {}
    CText(std::string_view view) {
        char *copy = own_;
        std::size_t length = view.size();
        if (length >= sizeof own_) {
            heap_ = static_cast<char *>(std::malloc(length + 1));
            copy = heap_ ? heap_ : own_;
            length = heap_ ? length : sizeof own_ - 1;
        }
        if (length > 0)
            std::memcpy(copy, view.data(), length);
        copy[length] = 0;
        text_ = copy;
    }
    ~CText() {
        if (heap_)
            std::free(heap_);
    }
    CText(const CText &) = delete;
    CText &operator=(const CText &) = delete;

    const char *get() const { return text_; }

private:
    const char *text_;
    char *heap_ = nullptr;
    char own_[128];
};

/** A value, or none and the `status` that tells why: a `std::optional` with a reason.
 *
 *      if (Answer<std::string> balance = gsm::ussd(response))
 *          use(*balance);
 *      else
 *          report(balance.status);
 */
template <class T, class Status = int32_t>
struct Answer : std::optional<T> {
    Status status{};

    Answer(T value, Status status_) : std::optional<T>(std::move(value)), status(status_) {}
    Answer(Status failure) : status(failure) {}
};

namespace detail {

template <class T>
using Plain = std::remove_cv_t<std::remove_reference_t<T>>;

template <class T>
inline constexpr bool isByte = std::is_same_v<T, uint8_t> || std::is_same_v<T, std::byte>;

template <class T, class = void>
inline constexpr bool isByteRange = false;
template <class T>
inline constexpr bool isByteRange<T, std::void_t<decltype(std::declval<const T &>().data()),
                                                 decltype(std::declval<const T &>().size())>> =
    isByte<Plain<std::remove_pointer_t<decltype(std::declval<const T &>().data())>>>;

template <class T>
inline constexpr bool isByteArray = std::is_array_v<T> &&isByte<Plain<std::remove_extent_t<T>>>;

/* Texts that end in a zero already, and all texts. */
template <class T>
inline constexpr bool isEndedText =
    std::is_same_v<std::decay_t<T>, char *> || std::is_same_v<std::decay_t<T>, const char *> ||
    std::is_same_v<T, std::string> || std::is_same_v<T, Text>;
template <class T>
inline constexpr bool isText = isEndedText<T> || std::is_same_v<T, std::string_view>;

/* Characters of texts that the terminal does not know. */
template <class T>
inline constexpr bool isWideCharacter =
    std::is_same_v<T, wchar_t> || std::is_same_v<T, char16_t> || std::is_same_v<T, char32_t>
#ifdef __cpp_char8_t
    || std::is_same_v<T, char8_t>
#endif
    ;

template <class T>
inline constexpr bool isInteger = std::is_integral_v<T> && !isWideCharacter<T> && sizeof(T) <= 8;

/* An enumeration is its number: one whose type is char counts as a number, too. */
template <class T>
constexpr auto numberOf(T value) {
    using Number = std::underlying_type_t<T>;
    using Wide = std::conditional_t<std::is_same_v<Number, char>, int16_t, Number>;
    return static_cast<Wide>(value);
}

inline uint32_t length32(std::size_t size) {
    constexpr std::size_t most = std::numeric_limits<uint32_t>::max();
    return static_cast<uint32_t>(size < most ? size : most);
}

} // namespace detail

/* ========================================================================= resources ==== */

/** The id of a string as the header of its module gives it (`uti compile --header shop.hpp`): with
 *  the module, the number of arguments that its wording takes (the highest {n} of all languages and
 *  1), and the conversions of its % placeholders: 'i' integers, 's' texts, 'c' characters, 'f'
 *  floating point; '!' when the languages differ. It is its number wherever C wants one. */
template <uint16_t id, int arguments = 0, char... conversions>
struct Message {
    const char *module;

    constexpr operator uint16_t() const { return id; }
};

namespace detail {

/* An argument of `format`. */
struct Value {
    enum Kind : uint8_t { signedNumber, unsignedNumber, truth, character, floating, text } kind;
    uint64_t bits = 0; /* of signed numbers with their sign */
    double number = 0;
    const char *characters = nullptr;
    uint64_t mask = ~uint64_t{0}; /* of a signed number's own bits */
};

template <class T>
constexpr char conversionOf() {
    if constexpr (isText<T>)
        return 's';
    else if constexpr (std::is_same_v<T, char>)
        return 'c';
    else if constexpr (std::is_floating_point_v<T> && !std::is_same_v<T, long double>)
        return 'f';
    else if constexpr (isInteger<T> || std::is_enum_v<T>)
        return 'i';
    else
        return 0;
}

template <class T>
constexpr bool takes(char conversion) {
    return conversion == conversionOf<T>() || (conversion == 'i' && std::is_same_v<T, char>);
}

template <class T>
Value valueOf(const T &argument) {
    static_assert(conversionOf<T>() != 0,
                  "uti: format takes integers, bool, char, enumerations, double and texts");
    if constexpr (std::is_enum_v<T>) {
        return valueOf(numberOf(argument));
    } else if constexpr (std::is_same_v<T, bool>) {
        return {Value::truth, argument};
    } else if constexpr (std::is_same_v<T, char>) {
        return {Value::character, static_cast<unsigned char>(argument)};
    } else if constexpr (std::is_floating_point_v<T>) {
        return {Value::floating, 0, argument};
    } else if constexpr (std::is_signed_v<T>) {
        return {Value::signedNumber, static_cast<uint64_t>(static_cast<int64_t>(argument)), 0,
                nullptr, ~uint64_t{0} >> (64 - 8 * sizeof argument)};
    } else {
        return {Value::unsignedNumber, argument};
    }
}

/* A text that `format` gets, held while it works. */
struct HeldText {
    CText held;
    operator Value() const { return {Value::text, 0, 0, held.get() ? held.get() : ""}; }
};

template <class T>
auto hold(const T &argument) {
    if constexpr (isText<T>)
        return HeldText{argument};
    else
        return valueOf<T>(argument);
}

template <class... Arguments>
void appendPrinted(std::string &out, const char *placeholder, Arguments... arguments) {
    char shown[64];
    const int length = std::snprintf(shown, sizeof shown, placeholder, arguments...);
    if (length < 0)
        return;
    const auto count = static_cast<std::size_t>(length);
    if (count < sizeof shown) {
        out.append(shown, count);
        return;
    }
    const std::size_t before = out.size();
    out.resize(before + count + 1); /* with snprintf's zero */
    std::snprintf(&out[before], count + 1, placeholder, arguments...);
    out.resize(before + count);
}

inline void appendValue(std::string &out, const Value &value) {
    switch (value.kind) {
    case Value::signedNumber:
        return appendPrinted(out, "%lld", static_cast<long long>(value.bits));
    case Value::unsignedNumber:
        return appendPrinted(out, "%llu", static_cast<unsigned long long>(value.bits));
    case Value::truth:
        out += value.bits ? "true" : "false";
        return;
    case Value::character:
        out += static_cast<char>(value.bits);
        return;
    case Value::floating:
        return appendPrinted(out, "%g", value.number);
    case Value::text:
        out += value.characters;
        return;
    }
}

/* A text with placeholders {n}, as the trace log reads them. */
inline std::string fillBraces(std::string_view format, const Value *values, std::size_t count) {
    std::string out;
    for (;;) {
        const std::size_t open = format.find('{');
        out += format.substr(0, open);
        const std::size_t close = format.find('}', open);
        if (open == format.npos || close == format.npos)
            return out;
        const long number = std::strtol(format.data() + open + 1, nullptr, 10);
        if (number >= 0 && static_cast<std::size_t>(number) < count)
            appendValue(out, values[number]);
        format.remove_prefix(close + 1);
    }
}

/* The length of a run of characters of a set at `text`. */
inline std::size_t runOf(const char *set, const char *text) {
    return std::strspn(text, set);
}

/* Appends a value as the placeholder between `begin` and `conversion` wants it. False when it is
   none for this value. */
inline bool appendAs(std::string &out, const Value &value, const char *begin, const char *modifier,
                     char conversion) {
    char placeholder[16] = "";
    const auto length = static_cast<std::size_t>(modifier - begin);
    if (length > 10)
        return false;
    std::memcpy(placeholder, begin, length);
    char *end = placeholder + length;
    const auto finish = [&](const char *with) {
        std::strcpy(end, with);
        return placeholder;
    };
    const bool isNumber = value.kind <= Value::character;
    switch (conversion) {
    case 'd':
    case 'i':
    case 'u':
        if (isNumber && value.kind == Value::signedNumber)
            appendPrinted(out, finish("lld"), static_cast<long long>(value.bits));
        else if (isNumber)
            appendPrinted(out, finish("llu"), static_cast<unsigned long long>(value.bits));
        return isNumber;
    case 'x':
    case 'X':
    case 'o': {
        const char wanted[] = {'l', 'l', conversion, 0};
        if (isNumber)
            appendPrinted(out, finish(wanted),
                          static_cast<unsigned long long>(value.bits & value.mask));
        return isNumber;
    }
    case 'c':
        if (value.kind == Value::character)
            appendPrinted(out, finish("c"), static_cast<int>(value.bits));
        return value.kind == Value::character;
    case 's':
        if (value.kind == Value::text)
            appendPrinted(out, finish("s"), value.characters);
        return value.kind == Value::text;
    default: {
        const char wanted[] = {conversion, 0};
        const bool isFloating = value.kind == Value::floating && std::strchr("fFeEgG", conversion);
        if (isFloating && conversion != 0)
            appendPrinted(out, finish(wanted), value.number);
        return isFloating && conversion != 0;
    }
    }
}

/* A text with the placeholders of printf. One that no argument fits stands as it is. */
inline std::string fillPercents(const char *format, const Value *values, std::size_t count) {
    std::string out;
    std::size_t next = 0;
    while (const char *percent = std::strchr(format, '%')) {
        out.append(format, percent);
        if (percent[1] == '%') {
            out += '%';
            format = percent + 2;
            continue;
        }
        const char *at = percent + 1;
        at += runOf("-+ #0", at);
        const std::size_t width = runOf("0123456789", at);
        at += width;
        std::size_t precision = 0;
        if (*at == '.') {
            precision = runOf("0123456789", at + 1);
            at += 1 + precision;
        }
        const char *const modifier = at;
        at += runOf("hlLjztq", at);
        format = *at ? at + 1 : at;
        const bool fits = width <= 3 && precision <= 3 && next < count &&
                          appendAs(out, values[next], percent, modifier, *at);
        if (!fits)
            out.append(percent, format);
        if (*at && std::strchr("diuxXocsfFeEgG", *at))
            ++next;
    }
    return out += format;
}

template <class... Arguments>
std::string fill(const char *format, const Arguments &...arguments) {
    const Value values[] = {arguments..., Value{}};
    const char *open = std::strchr(format, '{');
    return open && std::strchr(open, '}') ? fillBraces(format, values, sizeof...(Arguments))
                                          : fillPercents(format, values, sizeof...(Arguments));
}

} // namespace detail

/** The text that `format` becomes with the arguments in place of its placeholders: {0}, {1} and so
 *  on if it has one in braces, else those of `printf` (no `*`, widths of up to three digits). The
 *  types of the arguments count, never the format: a placeholder that does not fit its argument, or
 *  has none, stands as it is ({n} gives nothing), so a bad translation cannot do harm.
 *
 *      format("%5.2f", 1.5)          " 1.50"
 *      format("{1} x {0}", "tea", 2) "2 x tea"
 */
template <class... Arguments>
std::string format(CText text, const Arguments &...arguments) {
    return text.get() ? detail::fill(text.get(), detail::hold<Arguments>(arguments)...)
                      : std::string();
}

/** Makes two letters the current language of all modules (`Resource_SetLanguage`); false, and no
 *  change, for another number of characters. The first module must have been opened before. */
inline bool setLanguage(std::string_view language) {
    if (language.size() != 2)
        return false;
    Resource_SetLanguage(CText(language).get());
    return true;
}

/** The current language, two letters. */
inline std::string language() {
    return Resource_GetCurrentLanguage();
}

/** A resource module that is loaded; closes it (`Resource_Close`), whoever else uses it: have one
 *  such object a module.
 *
 *      uti::Module shop(SHOP_MODULE, 1);
 *      if (!shop)
 *          return shop.result();
 *      std::string hello = shop.text(SHOP_HELLO);
 *      std::string total = shop.format(SHOP_TOTAL, sum); // wrong arguments do not compile
 */
class Module {
public:
    /** Loads the module and makes it current (`Resource_Initialize`). */
    explicit Module(CText name) : name_(name.get() ? name.get() : "") {
        result_ = Resource_Initialize(name_.c_str());
    }
    /** The same, when it has that version (`Resource_IsValid`). */
    Module(CText name, uint16_t version) : name_(name.get() ? name.get() : "") {
        result_ = Resource_IsValid(name_.c_str(), version);
    }
    ~Module() {
        if (!name_.empty())
            Resource_Close(name_.c_str());
    }
    Module(Module &&other) noexcept : name_(std::move(other.name_)), result_(other.result_) {
        other.name_.clear();
    }
    Module &operator=(Module other) noexcept {
        std::swap(name_, other.name_);
        std::swap(result_, other.result_);
        return *this;
    }

    /** 0, or why the module cannot be used: `UTI_RESOURCE_NOT_LOADED`,
     *  `UTI_RESOURCE_OTHER_VERSION` and the like. */
    int32_t result() const { return result_; }
    explicit operator bool() const { return result_ == UTI_OK; }
    const std::string &name() const { return name_; }

    /** A copy of a string in the current language; the library's own is released
     *  (`Resource_GetString`, `Resource_Release`). Empty when it cannot be had. */
    std::string text(uint16_t id) const {
        const char *found = Resource_GetString(name_.c_str(), id);
        std::string copy = found;
        if (found != ResourceEmptyStr)
            Resource_Release(name_.c_str(), id);
        return copy;
    }
    /** The same in a language of its own (`Resource_GetStringEx`). */
    std::string text(uint16_t id, CText inLanguage) const {
        const char *found = Resource_GetStringEx(name_.c_str(), inLanguage.get(), id);
        std::string copy = found ? found : "";
        if (found && found != ResourceEmptyStr)
            Resource_Release(name_.c_str(), id);
        return copy;
    }

    /** `text` with the arguments in place of its placeholders, as `uti::format` puts them. For a
     *  typed message number and types of the arguments are checked when this is compiled. */
    template <uint16_t id, int count, char... conversions, class... Arguments>
    std::string format(Message<id, count, conversions...>, const Arguments &...arguments) const {
        constexpr std::size_t wanted = sizeof...(conversions) ? sizeof...(conversions) : count;
        static_assert(((conversions != '!') && ...),
                      "uti: the placeholders of this text differ between its languages");
        static_assert(sizeof...(Arguments) >= wanted, "uti: too few arguments for this text");
        static_assert(sizeof...(Arguments) <= wanted, "uti: too many arguments for this text");
        if constexpr (sizeof...(conversions) == sizeof...(Arguments))
            static_assert((detail::takes<Arguments>(conversions) && ...),
                          "uti: an argument is of another type than its placeholder");
        return uti::format(text(id), arguments...);
    }
    template <class... Arguments>
    std::string format(uint16_t id, const Arguments &...arguments) const {
        return uti::format(text(id), arguments...);
    }

private:
    std::string name_;
    int32_t result_;
};

/* ========================================================================= trace log ====
 *
 *     uti::trace::debug("shop", SHOP_SOLD, total, name, now);   // with its module
 *     uti::trace::debug(SHOP_SOLD, total, name, now);           // a typed message knows it
 *
 * An argument's kind follows from its type:
 *
 *     bool                              Bool
 *     char                              Char
 *     unsigned char                     Byte
 *     signed char, short                Short
 *     unsigned short                    Word
 *     signed integers of 32, 64 bits    Long, Int64
 *     unsigned ones                     DWord, UInt64
 *     float, double                     Double
 *     TerminalDate, or its address      Date
 *     TerminalTime, or its address      Time
 *     texts (convention 3)              String
 *     arrays, vectors and spans of      ByteArray
 *       uint8_t or std::byte
 *     enumerations                      as the integer below them
 *
 * Anything else does not compile, a pointer of another kind above all. Text records show `Word` and
 * `DWord` as if signed, so make 16 bits or more that may be large wider: `int64_t{count}`.
 */

namespace detail {

template <class T>
constexpr int traceKind() {
    if constexpr (std::is_same_v<T, bool>)
        return Bool;
    else if constexpr (std::is_same_v<T, char>)
        return Char;
    else if constexpr (isInteger<T>)
        return sizeof(T) == 8   ? (std::is_signed_v<T> ? Int64 : UInt64)
               : sizeof(T) == 4 ? (std::is_signed_v<T> ? Long : DWord)
               : sizeof(T) == 2 ? (std::is_signed_v<T> ? Short : Word)
                                : (std::is_signed_v<T> ? Short : Byte);
    else if constexpr (std::is_same_v<T, float> || std::is_same_v<T, double>)
        return Double;
    else if constexpr (std::is_same_v<Plain<std::remove_pointer_t<T>>, TerminalDate>)
        return Date;
    else if constexpr (std::is_same_v<Plain<std::remove_pointer_t<T>>, TerminalTime>)
        return Time;
    else if constexpr (isText<T>)
        return String;
    else if constexpr (isByteRange<T> || isByteArray<T>)
        return ByteArray;
    else
        return 0;
}

/* Hands an argument's type code and value words to `call`. */
template <class T, class Call>
[[gnu::always_inline]] inline int32_t withWords(const T &argument, Call call) {
    if constexpr (std::is_enum_v<T>) {
        return withWords(numberOf(argument), call);
    } else {
        constexpr int kind = traceKind<T>();
        static_assert(kind != 0 || !std::is_pointer_v<T>,
                      "uti: a pointer of this kind is no argument of a log record");
        static_assert(kind != 0 || std::is_pointer_v<T>,
                      "uti: this type is no argument of a log record");
        if constexpr (kind == Int64 || kind == UInt64) {
            return call(kind, UTI_TRACE_HALVES(argument));
        } else if constexpr (kind == Double) {
            const double value = argument;
            uint64_t bits;
            static_assert(sizeof bits == sizeof value);
            std::memcpy(&bits, &value, sizeof bits);
            return call(kind, UTI_TRACE_HALVES(bits));
        } else if constexpr (kind == Date || kind == Time) {
            if constexpr (std::is_pointer_v<T>)
                return call(kind, static_cast<const void *>(argument));
            else
                return call(kind, static_cast<const void *>(&argument));
        } else if constexpr (kind == String) {
            if constexpr (std::is_same_v<T, std::string>)
                return call(kind, static_cast<const void *>(argument.c_str()));
            else if constexpr (std::is_same_v<std::decay_t<T>, char *> ||
                               std::is_same_v<std::decay_t<T>, const char *>)
                return call(kind, static_cast<const void *>(argument));
            else
                return call(kind, static_cast<const void *>(CText(argument).get()));
        } else if constexpr (kind == ByteArray) {
            /* A null address would take no length: no bytes are some address and the length 0. */
            const void *address = std::data(argument);
            return call(kind, address ? address : "", length32(std::size(argument)));
        } else if constexpr (kind != 0) {
            return call(kind, static_cast<int>(argument));
        } else {
            return 0;
        }
    }
}

/* Calls `call` with the words of all arguments and the zero behind them. */
template <class Call>
[[gnu::always_inline]] inline int32_t expand(Call call) {
    return call(0);
}
template <class Call, class First, class... Rest>
[[gnu::always_inline]] inline int32_t expand(Call call, const First &first, const Rest &...rest) {
    return withWords(
        first, [&](auto... words) __attribute__((always_inline)) {
            return expand(
                [&](auto... more)
                    __attribute__((always_inline)) { return call(words..., more...); },
                rest...);
        });
}

template <int count, class... Arguments>
constexpr void checkCount() {
    static_assert(sizeof...(Arguments) >= count, "uti: too few arguments for this message");
    static_assert(sizeof...(Arguments) <= count, "uti: too many arguments for this message");
}

/* A level's writer. Below the level nothing is made of the arguments: the mode is all that the C
   call looks at, too, before it drops the record. */
template <int level, int32_t (*write)(const char *, uint32_t, ...)>
struct TraceLevel {
    template <class... Arguments>
    int32_t operator()(const char *module, uint32_t messageId,
                       const Arguments &...arguments) const {
        if (level > 1) {
            const int32_t mode = TraceExGetMode();
            if (level == 2 ? mode < 2 : mode != 3)
                return UTI_TRACE_NOT_WRITTEN;
        }
        return expand(
            [&](auto... words)
                __attribute__((always_inline)) { return write(module, messageId, words...); },
            arguments...);
    }
    template <uint16_t id, int count, char... conversions, class... Arguments>
    int32_t operator()(const char *module, Message<id, count, conversions...>,
                       const Arguments &...arguments) const {
        checkCount<count, Arguments...>();
        return (*this)(module, uint32_t{id}, arguments...);
    }
    template <uint16_t id, int count, char... conversions, class... Arguments>
    int32_t operator()(Message<id, count, conversions...> message,
                       const Arguments &...arguments) const {
        return (*this)(message.module, message, arguments...);
    }
};

/* Copies a text to a field of a structure of C, which keeps its zero. False when it was cut. */
template <std::size_t size>
bool copyTo(char (&field)[size], const Text &text) {
    const char *from = text.get() ? text.get() : "";
    const std::size_t length = std::strlen(from);
    const std::size_t count = length < size ? length : size - 1;
    std::memcpy(field, from, count);
    field[count] = 0;
    return count == length;
}

} // namespace detail

namespace trace {

/** Write a record of level 1, 2 or 3: `error(module, id, arguments...)` or, with a typed message,
 *  `error(message, arguments...)`; its number of arguments is then checked when this is compiled.
 *  Results as `TraceExError`: 0; `UTI_TRACE_NOT_WRITTEN`, at no more than its cost, when the log is
 *  closed, above the mode or filtered. */
inline constexpr detail::TraceLevel<1, TraceExError> error{};
inline constexpr detail::TraceLevel<2, TraceExSupport> support{};
inline constexpr detail::TraceLevel<3, TraceExDebug> debug{};

/** Settings of the trace log, as `TraceExSettings` has them. */
struct Settings {
    TraceExOutput output = TRACE_OUTPUT_FILE;
    uint32_t mode = 1;   /**< highest level written, 1 to 3 */
    Text modules = {};   /**< each followed by a comma; none for all; up to 127 characters */
    bool isText = false; /**< lines of text, not binary records */
    Text baseName = {};  /**< of the files, 1 to 30 characters */
    int32_t maxSize = 65536;
    const TraceExDevice *device = nullptr; /**< serial port and printer: in place of `baseName` */
};

/** The trace log, open as long as this lives (`TraceExOpen`, `TraceExClose`). One that could not be
 *  opened closes nothing. `result`: as `TraceExOpen`; `UTI_TRACE_REFUSED` for too many `modules`.
 *
 *      uti::trace::Log log({.mode = 3, .baseName = "shop", .maxSize = 1 << 20});
 */
class Log {
public:
    explicit Log(const Settings &settings) : result_(UTI_TRACE_REFUSED) {
        TraceExSettings made{};
        made.output = settings.output;
        made.mode = settings.mode;
        made.text = settings.isText;
        made.maxSize = settings.maxSize;
        if (settings.device)
            made.device = *settings.device;
        else
            detail::copyTo(made.device.baseName, settings.baseName);
        if (detail::copyTo(made.modules, settings.modules))
            result_ = TraceExOpen(&made);
    }
    ~Log() {
        if (result_ == UTI_OK)
            TraceExClose();
    }
    Log(Log &&other) noexcept : result_(std::exchange(other.result_, UTI_TRACE_REFUSED)) {}
    Log &operator=(Log other) noexcept {
        std::swap(result_, other.result_);
        return *this;
    }

    int32_t result() const { return result_; }
    explicit operator bool() const { return result_ == UTI_OK; }

private:
    int32_t result_;
};

} // namespace trace

/* ==================================================================== monitoring log ==== */

namespace monitor {

/** Writes a record of the monitoring log (`MonitorExWrite`), with arguments as a trace record. */
template <class... Arguments>
int32_t write(uint32_t messageId, const Arguments &...arguments) {
    return detail::expand(
        [&](auto... words)
            __attribute__((always_inline)) { return MonitorExWrite(messageId, words...); },
        arguments...);
}
template <uint16_t id, int count, char... conversions, class... Arguments>
int32_t write(Message<id, count, conversions...>, const Arguments &...arguments) {
    detail::checkCount<count, Arguments...>();
    return write(uint32_t{id}, arguments...);
}

/** Settings of the monitoring log, as `MonitorExSettings` has them. */
struct Settings {
    Text baseName = {}; /**< of the files, 1 to 28 characters */
    int32_t maxSize = 65536;
    bool isBuffered = false;
};

/** The monitoring log, open as long as this lives (`MonitorExOpen`, `MonitorExClose`). */
class Log {
public:
    explicit Log(const Settings &settings) {
        MonitorExSettings made{};
        made.mode = settings.isBuffered ? MONITOR_MODE_BUFFERED : MONITOR_MODE_DIRECT;
        made.maxSize = settings.maxSize;
        detail::copyTo(made.baseName, settings.baseName);
        result_ = MonitorExOpen(&made);
    }
    ~Log() {
        if (result_ == UTI_OK)
            MonitorExClose();
    }
    Log(Log &&other) noexcept : result_(std::exchange(other.result_, UTI_MONITOR_REFUSED)) {}
    Log &operator=(Log other) noexcept {
        std::swap(result_, other.result_);
        return *this;
    }

    int32_t result() const { return result_; }
    explicit operator bool() const { return result_ == UTI_OK; }

private:
    int32_t result_;
};

} // namespace monitor

/* =========================================================================== dialogs ====
 *
 *     using namespace uti;
 *     int cents = 0;
 *     const auto amount = edit({.id = SHOP_AMOUNT, .caption = shop.text(SHOP_PAY)},
 *                              {.radix = 2, .filledFromRight = true});
 *     if (!amount)
 *         return amount.status; // .outcome, .code
 *     const auto answer = confirm({.id = SHOP_CONFIRM, .text = *amount + " EUR",
 *                                  .breaks = [&] { return isHostGone(); }},
 *                                 {.first = shop.text(SHOP_YES), .second = shop.text(SHOP_NO)});
 *     if (answer == Outcome::confirmed)
 *         ...
 */

/** How a dialog ended. */
enum class Outcome : uint8_t {
    confirmed,  /**< or shown without waiting, or dialogs are deactivated */
    cancelled,  /**< Escape, or the second button */
    timed_out,  /**< the allowed time has passed */
    broken_off, /**< by the dialog's `breaks` */
    failed      /**< see the code: an error, or what `key` ended the dialog with */
};

/** An outcome with the C result behind it. */
struct Result {
    Outcome outcome = Outcome::confirmed;
    int32_t code = UTI_OK;

    static Result of(int32_t code) {
        return {code >= 0                       ? Outcome::confirmed
                : code == UTI_DIALOG_CANCELLED  ? Outcome::cancelled
                : code == UTI_DIALOG_TIME_OUT   ? Outcome::timed_out
                : code == UTI_DIALOG_BROKEN_OFF ? Outcome::broken_off
                                                : Outcome::failed,
                code};
    }
    /** True when it was confirmed. */
    explicit operator bool() const { return outcome == Outcome::confirmed; }
    friend bool operator==(const Result &result, Outcome wanted) {
        return result.outcome == wanted;
    }
    friend bool operator!=(const Result &result, Outcome wanted) {
        return result.outcome != wanted;
    }
};

/** A callable with its state, or none. The state is kept in the object: up to eight words, such as
 *  a lambda with eight references; give a larger one by `std::ref`. A callable that returns nothing
 *  answers 0. */
template <class Signature>
class Callback;

template <class Answered, class... Arguments>
class Callback<Answered(Arguments...)> {
public:
    Callback() = default;
    Callback(std::nullptr_t) {}
    template <class Callable,
              class = std::enable_if_t<!std::is_same_v<detail::Plain<Callable>, Callback>>>
    Callback(Callable &&callable) {
        using Kept = std::decay_t<Callable>;
        static_assert(std::is_invocable_v<Kept &, Arguments...>,
                      "uti: this callable does not take the arguments of the callback");
        static_assert(sizeof(Kept) <= sizeof state_ && alignof(Kept) <= alignof(void *),
                      "uti: this callable holds more than eight words: give it by std::ref");
        ::new (static_cast<void *>(state_)) Kept(std::forward<Callable>(callable));
        call_ = [](void *state, Arguments... arguments) -> Answered {
            Kept &kept = *static_cast<Kept *>(state);
            if constexpr (std::is_void_v<std::invoke_result_t<Kept &, Arguments...>>) {
                kept(std::forward<Arguments>(arguments)...);
                return Answered{};
            } else {
                return static_cast<Answered>(kept(std::forward<Arguments>(arguments)...));
            }
        };
        keep_ = [](void *state, const void *from) {
            if (from)
                ::new (state) Kept(*static_cast<const Kept *>(from));
            else
                static_cast<Kept *>(state)->~Kept();
        };
    }
    Callback(const Callback &other) : call_(other.call_), keep_(other.keep_) {
        if (keep_)
            keep_(state_, other.state_);
    }
    Callback &operator=(const Callback &other) {
        if (this != &other) {
            this->~Callback();
            ::new (static_cast<void *>(this)) Callback(other);
        }
        return *this;
    }
    ~Callback() {
        if (keep_)
            keep_(state_, nullptr);
    }

    explicit operator bool() const { return call_ != nullptr; }
    Answered operator()(Arguments... arguments) const {
        return call_(state_, std::forward<Arguments>(arguments)...);
    }

private:
    Answered (*call_)(void *state, Arguments...) = nullptr;
    void (*keep_)(void *state, const void *from) = nullptr; /* copies, or destroys without `from` */
    alignas(void *) mutable unsigned char state_[8 * sizeof(void *)];
};

/** A text for the label or edit of that name. */
struct Label {
    Text name = {};
    Text value = {};
};
using Labels = std::vector<Label>;

/** A description: a typed message, or `{"shop", SHOP_PIN}`. */
struct DialogId {
    const char *module = nullptr;
    uint16_t id = 0;

    constexpr DialogId() = default;
    constexpr DialogId(const char *module_, uint16_t id_) : module(module_), id(id_) {}
    template <uint16_t number, int count, char... conversions>
    constexpr DialogId(Message<number, count, conversions...> message)
        : module(message.module), id(number) {}
};

/** What every dialog takes. What is left out is as the description says. Callbacks are called while
 *  the dialog runs and never again. A dialog that one of them runs has its own callbacks and takes
 *  the place of this one, which is then cancelled. */
struct Dialog {
    DialogId id = {};
    Text caption = {};
    Text text = {};               /**< of the first edit; backslash and n is a line feed */
    Labels labels = {};           /**< not for selection and signature */
    uint32_t timeout = 0;         /**< ticks */
    Callback<bool()> breaks = {}; /**< true breaks the dialog off; not for the selection */
    /** Fills in labels with new texts; true shows them. Not for the selection. */
    Callback<bool(Labels &)> refresh = {};
    /** Takes a terminal key code; a negative answer ends the dialog and is its code. Not for the
     *  selection. */
    Callback<int32_t(uint8_t)> key = {};
    Text image = {};      /**< message alone */
    ColorSet colors = {}; /**< pairs of equal colours leave the description's */
};

/** Texts of the buttons of a confirmation. */
struct Buttons {
    Text first = {};
    Text second = {};
};

/** Buttons of a selection, and what is appended to the names of their images. */
struct Selection {
    Text first = {};
    Text second = {};
    Text firstSuffix = {};
    Text secondSuffix = {};
};

/** What an edit takes. */
struct Edit {
    Text value = {};              /**< shown at first */
    uint8_t radix = 0;            /**< digits behind the decimal point */
    bool filledFromRight = false; /**< an amount */
    Text pattern = {};
    char fillSymbol = 0;
    std::optional<InputLimits> limits = {};
    /** Takes a key and the text after it, which it may change; true takes the text over, cut to
     *  128 characters and to what the edit takes. */
    Callback<bool(int32_t, std::string &)> keyPressed = {};
    uint32_t room = 256; /**< characters that the answer may have, more with larger `limits` */
};

/** An item of a list. */
struct Item {
    Text text = {};
    Text detail = {}; /**< at the right */
    Text image = {};
    bool isChosen = false; /**< at first */

    Item() = default;
    template <class Any, class = std::enable_if_t<std::is_convertible_v<Any, Text>>>
    Item(Any &&text_, Text detail_ = {}, Text image_ = {}, bool isChosen_ = false)
        : text(std::forward<Any>(text_)), detail(std::move(detail_)), image(std::move(image_)),
          isChosen(isChosen_) {}
};

namespace detail {

/* The innermost running dialog: what its C callbacks, which have no word of the caller's, find
   their callables by. It lives on the stack of the call. */
class Run {
public:
    explicit Run(const Dialog &dialog,
                 const Callback<bool(int32_t, std::string &)> *keyPressed = nullptr)
        : dialog_(dialog), keyPressed_(keyPressed), outer_(std::exchange(innermost, this)) {
        fillLabels(dialog.labels);
    }
    ~Run() { innermost = outer_; }
    Run(const Run &) = delete;
    Run &operator=(const Run &) = delete;

    DialogRequest request() const {
        DialogRequest made{};
        made.resourceId = dialog_.id.id;
        made.module = dialog_.id.module;
        made.caption = dialog_.caption.get();
        made.text = dialog_.text.get();
        made.labelValues = dialog_.labels.empty() ? nullptr : values_.data();
        made.timeout = dialog_.timeout;
        made.imageName = dialog_.image.get();
        made.colors = dialog_.colors;
        if (dialog_.breaks)
            made.needToBreak = [] { return static_cast<int32_t>(innermost->dialog_.breaks()); };
        if (dialog_.refresh)
            made.refresh = [](const LabelValue **labels) { return innermost->refresh(labels); };
        if (dialog_.key)
            made.keyPostProcessing = [](uint8_t key) { return innermost->dialog_.key(key); };
        return made;
    }

    static int32_t keyPressed(int32_t key, char *text, int32_t) {
        constexpr std::size_t room = 128;
        std::string changed = text;
        if (!(*innermost->keyPressed_)(key, changed))
            return 0;
        const std::size_t length = changed.size() < room ? changed.size() : room;
        std::memcpy(text, changed.data(), length);
        text[length] = 0;
        return 1;
    }

private:
    int32_t refresh(const LabelValue **labels) {
        if (!dialog_.refresh(fresh_))
            return 0;
        fillLabels(fresh_);
        *labels = values_.data();
        return 1;
    }

    void fillLabels(const Labels &labels) {
        values_.clear();
        for (const Label &label : labels)
            if (label.name)
                values_.push_back({label.name.get(), label.value.get()});
        values_.push_back({nullptr, nullptr});
    }

    static inline Run *innermost = nullptr;

    const Dialog &dialog_;
    const Callback<bool(int32_t, std::string &)> *keyPressed_;
    Run *outer_;
    Labels fresh_;
    std::vector<LabelValue> values_;
};

/* The form of a list stays on the display until the next dialog and may be drawn again: so the
   items, whose texts the toolkit does not copy, are kept until the next list. */
inline Answer<std::size_t, Result> choose(const Dialog &dialog, std::vector<Item> items) {
    static std::vector<Item> kept;
    if (items.size() > std::numeric_limits<uint16_t>::max())
        return Result::of(UTI_DIALOG_TOO_MANY);
    std::vector<ListItem> listed;
    listed.reserve(items.size());
    for (const Item &item : items)
        listed.push_back({reinterpret_cast<uintptr_t>(item.text.get()),
                          reinterpret_cast<uintptr_t>(item.detail.get()), item.isChosen, 0,
                          item.image.get()});
    const Run run(dialog);
    ListRequest request{};
    request.dialog = run.request();
    request.items = listed.data();
    request.itemCount = static_cast<uint16_t>(items.size());
    const int32_t result = DialogList_DoModal(&request);
    kept = std::move(items);
    if (result < 0)
        return Result::of(result);
    return {static_cast<std::size_t>(result), Result{}};
}

} // namespace detail

/** Shows a message (`DialogMessage_Show`): until it is confirmed, broken off or its time is over;
 *  at once with `SHOW_AND_RETURN`, the message then staying on the display without its callbacks.
 */
inline Result show(const Dialog &dialog, ShowMode mode = SHOW_WITH_TIMEOUT) {
    const detail::Run run(dialog);
    const DialogRequest request = run.request();
    return Result::of(DialogMessage_Show(&request, mode));
}

/** Asks for a confirmation (`DialogConfirmation_DoModal`): the first button confirms, the second
 *  one cancels. */
inline Result confirm(const Dialog &dialog, const Buttons &buttons = {}) {
    const detail::Run run(dialog);
    ConfirmationRequest request{};
    request.dialog = run.request();
    request.firstButton = buttons.first.get();
    request.secondButton = buttons.second.get();
    return Result::of(DialogConfirmation_DoModal(&request));
}

/** Asks for one of two pictures (`DialogSelect_DoModal_IG`): confirmed is the first, cancelled the
 *  second. Labels and callbacks are not used. */
inline Result select(const Dialog &dialog, const Selection &selection = {}) {
    const detail::Run run(dialog);
    ConfirmationRequest request{};
    request.dialog = run.request();
    request.firstButton = selection.first.get();
    request.secondButton = selection.second.get();
    return Result::of(DialogSelect_DoModal_IG(&request, selection.firstSuffix.get(),
                                              selection.secondSuffix.get()));
}

/** Has a text edited (`DialogEdit_DoModal`). Answers the text, or nothing and how it ended. */
inline Answer<std::string, Result> edit(const Dialog &dialog, const Edit &edit = {}) {
    uint32_t room = edit.room;
    if (edit.limits && room < edit.limits->maxLength)
        room = edit.limits->maxLength;
    std::string buffer(std::size_t{room} + 1, '\0');
    if (const char *value = edit.value.get())
        buffer.replace(0, strnlen(value, room), value, strnlen(value, room));

    const detail::Run run(dialog, edit.keyPressed ? &edit.keyPressed : nullptr);
    EditRequest request{};
    request.dialog = run.request();
    request.radix = edit.radix;
    request.option = edit.filledFromRight;
    request.pattern = edit.pattern.get();
    request.fillSymbol = static_cast<uint8_t>(edit.fillSymbol);
    request.limits = edit.limits ? &*edit.limits : nullptr;
    request.keyPressed = edit.keyPressed ? detail::Run::keyPressed : nullptr;
    const int32_t result = DialogEdit_DoModal(&request, buffer.data(), room + 1);
    if (result < 0)
        return Result::of(result);
    buffer.resize(std::strlen(buffer.c_str()));
    return {std::move(buffer), Result{}};
}

/** Has an item chosen (`DialogList_DoModal`) from a range of `Item`s or of what makes one, a text
 *  for example. Answers its index from 0, or nothing and how it ended; more than 65535 items are
 *  `UTI_DIALOG_TOO_MANY`.
 *
 *      choose({.id = SHOP_GOODS}, {{"Tea", "2.10", "tea.png"}, {"Cake", "3.80", "cake.png"}})
 */
inline Answer<std::size_t, Result> choose(const Dialog &dialog, std::initializer_list<Item> items) {
    return detail::choose(dialog, std::vector<Item>(items));
}
template <class Range>
Answer<std::size_t, Result> choose(const Dialog &dialog, const Range &range) {
    std::vector<Item> items;
    for (const auto &each : range) // which need not tell its size
        items.emplace_back(each);  // NOLINT(performance-inefficient-vector-operation)
    return detail::choose(dialog, std::move(items));
}

/** Has a signature drawn and saved to a file (`DialogSignature_DoModal`). Failed with
 *  `UTI_DIALOG_NOTHING_SAVED` when nothing was drawn. */
inline Result sign(const Dialog &dialog, CText fileName) {
    const detail::Run run(dialog);
    const DialogRequest request = run.request();
    return Result::of(DialogSignature_DoModal(&request, fileName.get()));
}

/* ========================================================================= INI files ==== */

/** An INI file by its name; holds nothing but that.
 *
 *      Ini ini("shop.ini");
 *      const int port = ini.get<int>("NET", "PORT", 8080);
 *      if (std::optional<std::string> host = ini.get<std::string>("NET", "HOST"))
 *          ...
 *      ini.set("NET", "PORT", port + 1);
 */
class Ini {
public:
    explicit Ini(CText fileName) : name_(fileName.get() ? fileName.get() : "") {}

    /** The value of a key, or nothing when there is none: a `std::string` (`Ini_GetStr`), a signed
     *  integer of up to 32 bits, an unsigned one of up to 16, or `bool` (`Ini_GetLong`; nothing for
     *  a number that the type cannot hold). */
    template <class T>
    std::optional<T> get(CText section, CText key) const {
        if constexpr (std::is_same_v<T, std::string>) {
            char value[longestValue + 1];
            if (Ini_GetStr(name_.c_str(), section.get(), key.get(), value, sizeof value) != UTI_OK)
                return std::nullopt;
            return std::string(value);
        } else {
            static_assert(std::is_integral_v<T> &&
                              (sizeof(T) < 4 || (sizeof(T) == 4 && std::is_signed_v<T>)),
                          "uti: numbers of INI files have 32 bits with their sign");
            int32_t value = 0;
            if (Ini_GetLong(name_.c_str(), section.get(), key.get(), &value) != UTI_OK)
                return std::nullopt;
            if constexpr (std::is_same_v<T, bool>) {
                return value != 0;
            } else {
                if (value < int32_t{std::numeric_limits<T>::min()} ||
                    value > int32_t{std::numeric_limits<T>::max()})
                    return std::nullopt;
                return static_cast<T>(value);
            }
        }
    }
    /** The same, or `fallback` in place of nothing. */
    template <class T>
    T get(CText section, CText key, T fallback) const {
        std::optional<T> value = get<T>(section.get(), key.get());
        return value ? *std::move(value) : std::move(fallback);
    }

    /** Sets a value and rewrites the file: a text (`Ini_SetStr`) or a number (`Ini_SetLong`).
     *  Returns 0; `UTI_INI_FAILED`. */
    template <class T>
    int32_t set(CText section, CText key, const T &value) const {
        if constexpr (detail::isText<T> || std::is_array_v<T>) {
            return Ini_SetStr(name_.c_str(), section.get(), key.get(), CText(value).get());
        } else {
            static_assert(std::is_integral_v<T> &&
                              (sizeof(T) < 4 || (sizeof(T) == 4 && std::is_signed_v<T>)),
                          "uti: numbers of INI files have 32 bits with their sign");
            return Ini_SetLong(name_.c_str(), section.get(), key.get(),
                               static_cast<int32_t>(value));
        }
    }

    /** The names of the sections, in upper case and file order; none when the file cannot be read.
     */
    std::vector<std::string> sections() const {
        std::vector<std::string> names;
        const int32_t count = Ini_GetSectionCount(name_.c_str());
        for (int32_t i = 0; i < count; ++i) {
            char name[longestValue + 1];
            if (Ini_GetSectionName(name_.c_str(), i, name, sizeof name) == UTI_OK)
                names.emplace_back(name);
        }
        return names;
    }

    /** `Ini_RemoveSection`; the name in upper case. */
    int32_t removeSection(CText section) const {
        return Ini_RemoveSection(name_.c_str(), section.get());
    }
    /** Has the next use read the file again (`Ini_RemoveFileInfoFromCache`). */
    int32_t forget() const { return Ini_RemoveFileInfoFromCache(name_.c_str()); }

private:
    static constexpr std::size_t longestValue = 255;

    std::string name_;
};

/* =========================================================================== storage ==== */

namespace detail {

/* The type code under which a type is stored, -1 for none. */
template <class T>
constexpr int32_t storageType() {
    switch (traceKind<T>()) {
    case Char:
        return STORAGE_CHAR;
    case Byte:
        return STORAGE_BYTE;
    case Bool:
        return STORAGE_BOOL;
    case Short:
        return STORAGE_SHORT;
    case Word:
        return STORAGE_WORD;
    case Long:
        return STORAGE_LONG;
    case DWord:
        return STORAGE_DWORD;
    case Int64:
        return STORAGE_INT64;
    case UInt64:
        return STORAGE_UINT64;
    case Double:
        return STORAGE_DOUBLE;
    case Date:
        return STORAGE_DATE;
    case Time:
        return STORAGE_TIME;
    case String:
    case ByteArray:
        return STORAGE_STRING;
    default:
        return -1;
    }
}

} // namespace detail

/** A table from 32-bit keys to typed values; frees it (`Storage_Create`, `Storage_Free`).
 *
 *      uti::Storage values;
 *      values.put(1, 42);
 *      values.put(2, "text");
 *      values.get<int>(1)          // 42
 *      values.get<int64_t>(1)      // nothing: another type
 *      values.get<std::string>(2)  // "text"
 */
class Storage {
public:
    Storage() : handle_(Storage_Create()) {}
    ~Storage() {
        if (handle_)
            Storage_Free(handle_);
    }
    Storage(Storage &&other) noexcept : handle_(std::exchange(other.handle_, nullptr)) {}
    Storage &operator=(Storage other) noexcept {
        std::swap(handle_, other.handle_);
        return *this;
    }

    /** False when memory was short; every operation then fails. */
    explicit operator bool() const { return handle_ != nullptr; }
    /** For the operations of uti.h; stays this object's. */
    ::Storage handle() const { return handle_; }

    /** Stores a copy of a value as the type it has (`Storage_Put`): the kinds of trace arguments,
     *  but for pointers. Texts are stored without their zero, but for the empty one. False for no
     *  bytes and short memory. */
    template <class T>
    bool put(uint32_t key, const T &value) {
        if constexpr (std::is_enum_v<T>) {
            return put(key, detail::numberOf(value));
        } else {
            constexpr int32_t type = detail::storageType<T>();
            static_assert(type >= 0, "uti: a Storage has no values of this type");
            if constexpr (detail::isText<T>) {
                const CText text(value);
                const std::size_t length = text.get() ? std::strlen(text.get()) : 0;
                return store(key, type, text.get(), length ? length : 1);
            } else {
                static_assert(!std::is_pointer_v<T>, "uti: a Storage has no values of this type");
                if constexpr (type == STORAGE_STRING)
                    return store(key, type, std::data(value), std::size(value));
                else if constexpr (std::is_same_v<T, float>)
                    return put(key, double{value});
                else if constexpr (std::is_same_v<T, signed char>)
                    return put(key, int16_t{value});
                else
                    return store(key, type, &value, sizeof value);
            }
        }
    }

    /** The value under a key, or nothing when there is none of this type. A `std::string` is a
     *  copy, a final zero that was stored left out; `Bytes` are the stored bytes themselves and
     *  live until the key is put or removed, or the Storage cleared or freed. */
    template <class T>
    std::optional<T> get(uint32_t key) const {
        if constexpr (std::is_same_v<T, std::string> || std::is_same_v<T, Bytes>) {
            StorageBytes found{};
            if (Storage_Get(handle_, key, STORAGE_STRING, &found, 0) == 0)
                return std::nullopt;
            if constexpr (std::is_same_v<T, Bytes>) {
                return Bytes(static_cast<const uint8_t *>(found.data), found.length);
            } else {
                const auto *text = static_cast<const char *>(found.data);
                const bool isEnded = found.length > 0 && text[found.length - 1] == 0;
                return std::string(text, found.length - isEnded);
            }
        } else {
            constexpr int32_t type = detail::storageType<T>();
            static_assert(type >= 0 && type != STORAGE_STRING && !std::is_pointer_v<T> &&
                              !std::is_same_v<T, float> && !std::is_same_v<T, signed char>,
                          "uti: a Storage has no values of this type");
            T value{};
            if (Storage_Get(handle_, key, type, &value, sizeof value) == 0)
                return std::nullopt;
            return value;
        }
    }

    bool contains(uint32_t key) const { return Storage_GetType(handle_, key) >= 0; }
    bool remove(uint32_t key) { return Storage_Remove(handle_, key) != 0; }
    void clear() { Storage_Clear(handle_); }

    /** All keys, by bucket. */
    std::vector<uint32_t> keys() const {
        uint32_t *found = nullptr;
        uint32_t count = 0;
        if (Storage_GetKeys(handle_, &found, &count) == 0 || !found)
            return {};
        std::vector<uint32_t> copy(found, found + count);
        Storage_MemFree(found);
        return copy;
    }
    /** The values as a block (`Storage_Export`), and back. */
    std::vector<uint8_t> exportBlock() const {
        void *block = nullptr;
        uint32_t size = 0;
        if (Storage_Export(handle_, &block, &size) == 0 || !block)
            return {};
        const auto *bytes = static_cast<const uint8_t *>(block);
        std::vector<uint8_t> copy(bytes, bytes + size);
        Storage_MemFree(block);
        return copy;
    }
    bool importBlock(Bytes block) {
        return Storage_Import(handle_, block.data(), detail::length32(block.size())) != 0;
    }

private:
    bool store(uint32_t key, int32_t type, const void *bytes, std::size_t length) {
        return length <= std::numeric_limits<uint32_t>::max() &&
               Storage_Put(handle_, key, type, bytes, static_cast<uint32_t>(length)) != 0;
    }

    ::Storage handle_;
};

/* ============================================================================== list ==== */

/** The items of a List of uti.h as a range of `T &`, from head to tail. The List's own cursor stays
 *  where it is; do not remove nodes meanwhile.
 *
 *      for (Good &good : uti::each<Good>(list))
 */
template <class T>
class ListRange {
public:
    class Iterator {
    public:
        explicit Iterator(ListNode *node) : node_(node) {}
        T &operator*() const { return *static_cast<T *>(node_->data); }
        T *operator->() const { return static_cast<T *>(node_->data); }
        Iterator &operator++() {
            node_ = node_->next;
            return *this;
        }
        bool operator==(const Iterator &other) const { return node_ == other.node_; }
        bool operator!=(const Iterator &other) const { return node_ != other.node_; }

    private:
        ListNode *node_;
    };

    explicit ListRange(const ::List *list) : head_(list ? list->head : nullptr) {}
    Iterator begin() const { return Iterator(head_); }
    Iterator end() const { return Iterator(nullptr); }

private:
    ListNode *head_;
};

template <class T>
ListRange<T> each(const ::List *list) {
    return ListRange<T>(list);
}

/** A List of its own (`List_Create`, `List_Destroy`). It does not own its items, so a temporary is
 *  none. */
template <class T>
class List {
public:
    List() : list_(List_Create()) {}
    ~List() { List_Destroy(list_); }
    List(List &&other) noexcept : list_(std::exchange(other.list_, nullptr)) {}
    List &operator=(List other) noexcept {
        std::swap(list_, other.list_);
        return *this;
    }

    /** Appends an item that outlives its place in the list. False when memory is short. */
    bool add(T &item) {
        return list_ && AddTail(list_, const_cast<std::remove_const_t<T> *>(&item)) != nullptr;
    }
    bool add(const std::remove_const_t<T> &&) = delete;
    std::size_t size() const { return list_ ? static_cast<std::size_t>(GetCount(list_)) : 0; }
    void clear() {
        if (list_)
            RemoveAll(list_);
    }
    /** For the operations of uti.h; stays this object's. Null when memory was short. */
    ::List *handle() const { return list_; }

    auto begin() const { return ListRange<T>(list_).begin(); }
    auto end() const { return ListRange<T>(list_).end(); }

private:
    ::List *list_;
};

/* =========================================================================== BER-TLV ==== */

namespace bertlv {

struct Object {
    uint32_t tag;
    Bytes value; /**< inside the data */
    bool isConstructed;
};

/** The objects of one level as a range. It ends at the end of the data or at an object that cannot
 *  be read; `result` then tells which. To be walked once.
 *
 *      Objects objects(data);
 *      for (const Object &object : objects)
 *          ...
 *      if (objects.result() != UTI_OK)   // UTI_BERTLV_BAD_OBJECT, UTI_BERTLV_CUT_VALUE
 */
class Objects {
public:
    class Iterator {
    public:
        explicit Iterator(Objects *objects) : objects_(objects) {}
        const Object &operator*() const { return objects_->object_; }
        const Object *operator->() const { return &objects_->object_; }
        Iterator &operator++() {
            if (!objects_->next())
                objects_ = nullptr;
            return *this;
        }
        bool operator==(const Iterator &other) const { return objects_ == other.objects_; }
        bool operator!=(const Iterator &other) const { return objects_ != other.objects_; }

    private:
        Objects *objects_;
    };

    explicit Objects(Bytes data) : cursor_(data.data()), left_(detail::length32(data.size())) {}

    /** Reads the next object (`BerTlv_GetTag`); false at the end. */
    bool next() {
        if (left_ == 0 || result_ != UTI_OK)
            return false;
        const bool isConstructed = (*cursor_ & 0x20) != 0;
        uint32_t tag = 0, length = 0;
        const uint8_t *value = nullptr;
        result_ = BerTlv_GetTag(&cursor_, &left_, &tag, &length, &value);
        if (result_ != UTI_OK)
            return false;
        object_ = {tag, value ? Bytes(value, length) : Bytes(), isConstructed};
        return true;
    }
    const Object &object() const { return object_; }
    int32_t result() const { return result_; }

    Iterator begin() { return Iterator(next() ? this : nullptr); }
    static Iterator end() { return Iterator(nullptr); }

private:
    const uint8_t *cursor_;
    uint32_t left_;
    int32_t result_ = UTI_OK;
    Object object_{};
};

inline Objects objects(Bytes data) {
    return Objects(data);
}

/** The value of the first object with a tag, as `BerTlv_ExtractSingleTag` searches (an object
 *  before those inside it, five levels below the top one), but inside the data and not as a copy:
 *  it lives as long as they do. Nothing and `UTI_BERTLV_NOT_FOUND` or `UTI_BERTLV_BAD_DATA`.
 *
 *      if (Answer<Bytes> amount = bertlv::find(data, 0x9F02))
 */
inline Answer<Bytes> find(Bytes data, uint32_t tag, int levelsBelow = 5) {
    if (data.empty())
        return UTI_BERTLV_BAD_DATA;
    Objects objects(data);
    while (objects.next()) {
        const Object &object = objects.object();
        if (object.tag == tag)
            return {object.value, UTI_OK};
        if (!object.isConstructed || levelsBelow <= 0)
            continue;
        const Answer<Bytes> inner = find(object.value, tag, levelsBelow - 1);
        if (inner.status != UTI_BERTLV_NOT_FOUND)
            return inner;
    }
    return objects.result() == UTI_OK ? UTI_BERTLV_NOT_FOUND : UTI_BERTLV_BAD_DATA;
}

/** Writes an object to the start of `room` (`BerTlv_AppendTag`). Answers the number of bytes
 *  written, or nothing and `UTI_BERTLV_BAD_OBJECT`. */
inline Answer<std::size_t> append(Room room, uint32_t tag, Bytes value) {
    uint32_t size = detail::length32(room.size());
    const int32_t result = value.size() > std::numeric_limits<uint32_t>::max()
                               ? int32_t{UTI_BERTLV_BAD_OBJECT}
                               : BerTlv_AppendTag(tag, static_cast<uint32_t>(value.size()),
                                                  value.data(), room.data(), &size);
    if (result != UTI_OK)
        return result;
    return {std::size_t{size}, UTI_OK};
}

} // namespace bertlv

/* ====================================================================== USSD and SMS ==== */

namespace gsm {

/** The text of a USSD response (`UTILS_ParseUSSDResponse`), or nothing and `UTI_GSM_FAILED`. */
inline Answer<std::string> ussd(std::string response) {
    std::string text(513, '\0');
    const int32_t length = UTILS_ParseUSSDResponse(
        response.data(), detail::length32(response.size()), text.data(), 513);
    if (length < 0)
        return length;
    text.resize(static_cast<std::size_t>(length));
    return {std::move(text), UTI_OK};
}

/** The text of SMS data (`UTILS_ParseSMSData`), or nothing and `UTI_GSM_FAILED`. */
inline Answer<std::string> sms(std::string_view data) {
    std::string text(650, '\0');
    const int32_t length = UTILS_ParseSMSData(data.empty() ? "" : data.data(),
                                              detail::length32(data.size()), text.data(), 650);
    if (length < 0)
        return length;
    text.resize(static_cast<std::size_t>(length));
    return {std::move(text), UTI_OK};
}

} // namespace gsm

} // namespace uti

#endif /* UTI_HPP */
