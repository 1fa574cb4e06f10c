// utiIni.h: the cache of INI files that the reader and the writer of a file (utiIni.cpp) share with
// the exported operations (utiIniAccess.cpp). Stands on the platform's files and the heap.
// docs/formats.md draws a file as it is read and as it is written.
#pragma once

#include "Src/heap.h"
#include "uti.h"

#include <algorithm>
#include <string_view>
#include <type_traits>
#include <utility>

namespace uti {

inline constexpr std::size_t longestName = sizeof(SectionKeyInfo::key) - 1;
inline constexpr std::size_t longestSectionName = 254;
inline constexpr std::size_t longestValue = 254;

// Refused: malformed. Full: one too many.
enum class Stored { done, refused, full, noMemory };

inline uint16_t hashOf(std::string_view name) {
    using Part = std::size_t; // what the machine mixes at once
    Part hash = name.size();
    const auto mix = [&hash](Part part) {
        hash = (hash ^ part) * static_cast<Part>(0x9E3779B97F4A7C15u);
        hash ^= hash >> 4 * sizeof hash;
    };
    Part part;
    for (; name.size() >= sizeof part; name.remove_prefix(sizeof part)) {
        std::memcpy(&part, name.data(), sizeof part);
        mix(part);
    }
    part = 0;
    for (const char c : name)
        part = part << 8 | static_cast<uint8_t>(c);
    mix(part);
    return static_cast<uint16_t>(hash >> (8 * sizeof hash - 16));
}

// Items in the order of their arrival, each with an owned `text` and a `name()` like no other's. A
// table keeps their places sorted by the hash of the name and then by the name itself, with gaps:
// each stands in the slot that its hash has among all hashes or, where others are in the way, close
// behind. A search begins at that slot and takes ever longer steps, so that no file, be it long or
// hostile, makes it slow.
template <class Item>
class NamedArray {
public:
    int16_t count() const { return count_; }
    Item *begin() const { return items_; }
    Item *end() const { return items_ + count_; }

    // The item with this name, or null.
    Item *find(std::string_view name) const {
        if (count_ <= fewItems) {
            Item *found = std::ranges::find(begin(), end(), name, &Item::name);
            return found == end() ? nullptr : found;
        }
        const uint16_t hash = hashOf(name);
        return itemAt(*lowerBound(hash, name), hash, name);
    }

    // Puts an item in the place of the one with its name, or behind the others. It belongs to the
    // array from now on, also when it is not stored. Without a text it counts as short memory.
    Stored put(Item item) {
        if (!item.text) {
            release(item);
            return Stored::noMemory;
        }
        const Stored room = makeRoom();
        const uint16_t hash = hashOf(item.name());
        Place *at = capacity_ > 0 ? lowerBound(hash, item.name()) : nullptr;
        if (Item *old = at ? itemAt(*at, hash, item.name()) : nullptr) {
            release(*old);
            *old = item;
            return Stored::done;
        }
        if (room != Stored::done) {
            release(item);
            return room;
        }

        Place pushed{hash, count_};
        while (!isGap(pushed))
            std::swap(*at++, pushed);
        items_[count_++] = item;
        return Stored::done;
    }

    void remove(Item *item) {
        const auto removed = static_cast<int16_t>(item - items_);
        release(*item);
        std::copy(item + 1, end(), item);
        Place *next = places_;
        for (Place *slot = places_; slot != places_ + slotsFor(capacity_); ++slot) {
            Place place = std::exchange(*slot, gap);
            if (isGap(place) || place.item == removed)
                continue;
            if (place.item > removed)
                --place.item;
            next = std::max(next, places_ + slotOf(place.hash, capacity_));
            *next++ = place;
        }
        if (--count_ == 0)
            clear();
    }

    // Removes the newest items until `count` are left.
    void truncate(int16_t count) {
        while (count_ > count)
            remove(end() - 1);
    }

    void clear() {
        for (Item &item : *this)
            release(item);
        std::free(items_);
        std::free(places_);
        *this = {};
    }

private:
    static constexpr int16_t fewItems = 4; // looked at one by one, which is faster

    struct Place {
        uint16_t hash;
        int16_t item; // negative for a gap
    };

    static constexpr Place gap{0, -1};

    static bool isGap(const Place &place) { return place.item < 0; }

    // Hashes spread over twice as many slots as there may be items. Should all of them belong in
    // the last one, the slots behind it have room for them, and one stays free.
    static std::size_t slotOf(uint16_t hash, int32_t capacity) {
        return hash * (2 * static_cast<uint32_t>(capacity)) >> 16;
    }
    static std::size_t slotsFor(int32_t capacity) { return 3 * static_cast<std::size_t>(capacity); }

    Item *itemAt(const Place &place, uint16_t hash, std::string_view name) const {
        if (isGap(place) || place.hash != hash || items_[place.item].name() != name)
            return nullptr;
        return items_ + place.item;
    }

    // The slot where a name stands or belongs.
    Place *lowerBound(uint16_t hash, std::string_view name) const {
        const auto isBefore = [&](const Place &place) {
            if (isGap(place) || place.hash != hash)
                return !isGap(place) && place.hash < hash;
            return items_[place.item].name() < name;
        };
        Place *from = places_ + slotOf(hash, capacity_);
        for (std::ptrdiff_t step = 1;; step *= 2) {
            step = std::min(step, places_ + slotsFor(capacity_) - from);
            if (!isBefore(from[step - 1]))
                return std::partition_point(from, from + step - 1, isBefore);
            from += step;
        }
    }

    Stored makeRoom() {
        static_assert(std::is_trivially_copyable_v<Item>);
        if (count_ == INT16_MAX)
            return Stored::full;
        if (count_ < capacity_)
            return Stored::done;

        const int32_t wanted = std::clamp(2 * capacity_, 8, INT16_MAX);
        void *items = std::realloc(items_, static_cast<std::size_t>(wanted) * sizeof(Item));
        if (items)
            items_ = static_cast<Item *>(items);
        auto *places = static_cast<Place *>(std::malloc(slotsFor(wanted) * sizeof(Place)));
        if (!items || !places) {
            std::free(places);
            if (count_ == 0)
                clear();
            return Stored::noMemory;
        }
        std::fill_n(places, slotsFor(wanted), gap);
        Place *next = places;
        for (const Place *slot = places_; slot != places_ + slotsFor(capacity_); ++slot) {
            next = std::max(next, places + slotOf(slot->hash, wanted));
            *next = *slot; // a gap, whose hash is 0, into a gap
            next += isGap(*slot) ? 0 : 1;
        }
        std::free(places_);
        places_ = places;
        capacity_ = wanted;
        return Stored::done;
    }

    Item *items_ = nullptr;
    Place *places_ = nullptr;
    int16_t count_ = 0;
    int32_t capacity_ = 0;
};

// A key as it is written, so that writing a file needs no memory: "KEY=", the value, CR LF. A value
// with line breaks stands there twice, as it is and then as its line.
struct IniKey {
    char *text;
    uint16_t nameLength;
    uint16_t valueLength;
    uint16_t lineAt;
    uint16_t lineLength;

    std::string_view name() const { return {text, nameLength}; }
    std::string_view assignment() const { return {text, nameLength + 1u}; }
    std::string_view value() const { return {text + nameLength + 1, valueLength}; }
    std::string_view line() const { return {text + lineAt, lineLength}; }
};

struct IniSection {
    char *text; // "[NAME]", CR LF
    uint16_t nameLength;
    NamedArray<IniKey> keys;

    std::string_view name() const { return {text + 1, nameLength}; }
    std::string_view header() const { return {text, nameLength + 4u}; }
};

struct IniFileInfo {
    char *text; // the file name as it was given
    std::size_t nameLength;
    NamedArray<IniSection> sections;

    std::string_view name() const { return {text, nameLength}; }
};

inline void release(IniKey &key) {
    std::free(key.text);
}

inline void release(IniSection &section) {
    section.keys.clear();
    std::free(section.text);
}

inline void release(IniFileInfo &file) {
    file.sections.clear();
    std::free(file.text);
}

// The cache. Addresses in it stay valid until something is added to or removed from their array.
extern NamedArray<IniFileInfo> iniFiles;

// --- names and lines

// The text without the characters 1 to 32 at both ends, then without a pair of quotes around it.
std::string_view iniTrim(std::string_view text);

// A name as it is compared and stored: trimmed, upper-case, with a terminator. Empty when nothing
// is left or it is longer than 255 characters.
using IniName = char[longestName + 1];
std::string_view iniNormalise(std::string_view name, IniName &out);

inline bool isComment(std::string_view line) {
    return line.front() == ';' || line.front() == '#';
}

inline bool isHeader(std::string_view line) {
    return line.front() == '[';
}

// What stands in the brackets of a header line, empty when there is no ']'.
std::string_view iniHeaderName(std::string_view line);

// The lines of a text that are not empty, one by one.
class IniLines {
public:
    explicit IniLines(std::string_view text) : text_(text) {}
    bool next(std::string_view &line);

private:
    std::string_view text_; // behind the LF that ends the block
    std::string_view block_;
};

// --- files

struct FileText {
    HeapPointer<char> bytes;
    std::size_t length = 0;

    std::string_view view() const { return {bytes.get(), length}; }
};

// Unreadable: missing, empty or cut short.
// Blocked: it has settings that could not be read, or its copy could not be brought home; only
// while files are written safely.
enum class FileRead { done, unreadable, noMemory, blocked };

// Reads a whole file from disk.
FileRead iniReadFile(const char *fileName, FileText &text);

// Whether an unreadable file is an error or a record without sections.
enum class Unreadable { isError, isEmpty };

// Returns the record of a file, reading the file when it has none; null for an error, a null or
// empty name, short memory and one file too many. The cache is then unchanged.
IniFileInfo *iniLoadFile(const char *fileName, Unreadable unreadable = Unreadable::isError);

// Finds the section that a header line names, or adds it; null unless done.
Stored iniFindOrAddSection(std::string_view headerLine, IniFileInfo &file, IniSection *&section);

// Replaces the value of a key, or adds the key. The name is normalised, the value is stored as it
// is.
Stored iniSetValue(IniSection &section, std::string_view name, std::string_view value);

// Rewrites a file from its record. Nothing happens when it has none.
void iniWriteFile(const char *fileName);

// Hands what a file is to hold to `write`, piece by piece.
template <class Write>
void iniForEachPiece(const IniFileInfo &file, Write write) {
    for (const IniSection &section : file.sections) {
        write(section.header());
        for (const IniKey &key : section.keys) {
            write(key.assignment());
            write(key.line());
        }
        write("\r\n");
    }
}

// --- safe writing (utiIniSafeWrite.cpp); without it these do nothing and answer true

// Brings a copy that the loss of power has left home, or drops one that is not complete. False,
// reported, when that fails, and the file may then be anything.
bool iniBringHome(const char *fileName);

// Whether a file that could not be read may be started afresh: not when it has content.
bool iniMayReplace(const char *fileName);

// Before a file is rewritten: keeps a copy of what it is to hold. False, reported, when there could
// be none, and the file must then stay as it is.
bool iniKeepCopy(const char *fileName, const IniFileInfo &file);

// After it: the copy goes when all of the file was written.
void iniDropCopy(const char *fileName, bool isWritten);

} // namespace uti
