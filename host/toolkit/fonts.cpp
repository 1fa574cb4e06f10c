// fonts.cpp: finding the font files, fitting their characters into cells, and keeping what was
// rendered.
#include "host/toolkit/fonts.h"

#include "host/terminal/notice.h"

#include <ft2build.h>
#include FT_FREETYPE_H

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <iterator>
#include <optional>
#include <set>
#include <vector>

namespace uti::host {

namespace {

struct FontFile {
    const char *name;
    const char *package;
};
constexpr FontFile fixedFile{"5x8.pcf.gz", "xfonts-base"};
constexpr FontFile monoFile{"DejaVuSansMono.ttf", "fonts-dejavu-core"};
constexpr FontFile monoBoldFile{"DejaVuSansMono-Bold.ttf", "fonts-dejavu-core"};
constexpr FontFile sansBoldFile{"DejaVuSans-Bold.ttf", "fonts-dejavu-core"};

struct BuiltIn {
    std::string_view name; // those of slots 0 to 5
    Size cell;
    FontFile file;
};
constexpr BuiltIn builtIn[] = {
    {"6x8", {6, 8}, fixedFile},           {"12x16", {12, 16}, monoFile},
    {"16x24", {16, 24}, monoFile},        {"dig6x8", {6, 8}, fixedFile},
    {"dig12x16", {12, 16}, monoBoldFile}, {"dig16x24", {16, 24}, monoBoldFile}};
constexpr int labelHeight = 14;

// Where distributions put the two packages.
constexpr const char *folders[] = {"/usr/share/fonts/truetype/dejavu",
                                   "/usr/share/fonts/X11/misc",
                                   "/usr/share/fonts/TTF",
                                   "/usr/share/fonts/dejavu",
                                   "/usr/share/fonts/misc",
                                   "/usr/share/fonts/dejavu-sans-mono-fonts",
                                   "/usr/share/fonts/dejavu-sans-fonts"};

constexpr char32_t capitalIe = U'Е', capitalIo = U'Ё';
constexpr int ownEmHeight = 16;
constexpr int largestCell = 128;
constexpr FT_Long spreadPercent = 96;
// Those that reach highest and lowest: capitals with marks above, brackets, tails and the
// underscore.
constexpr std::u32string_view tallest = U"ЁЙЎЇ|()[]{}@jy_,;QЩщфҐ";
constexpr std::size_t mostSheets = 24;

// A file as it is named, or below one of the folders: those of UTI_FONT_PATH, parted by colons,
// come first.
std::optional<std::string> findFile(const std::string &name) {
    const auto isFile = [](const std::filesystem::path &path) {
        std::error_code error;
        return std::filesystem::is_regular_file(path, error);
    };
    if (isFile(name))
        return name;

    std::vector<std::filesystem::path> places;
    const char *more = std::getenv("UTI_FONT_PATH");
    for (std::string_view rest = more ? more : ""; !rest.empty();) {
        const std::string_view place = rest.substr(0, rest.find(':'));
        places.emplace_back(place);
        rest.remove_prefix(std::min(place.size() + 1, rest.size()));
    }
    places.insert(places.end(), std::begin(folders), std::end(folders));
    for (const auto &place : places)
        if (isFile(place / name))
            return place / name;
    return std::nullopt;
}

// What the name of a font says when it is one of a code page: "cp" and the page's number or name,
// "_", the name of a built-in font and ".fon", with "n" before all of it for a negative one.
struct CodePageFont {
    const CodePage *codePage;
    const BuiltIn *like; // null for a name of another font
    Ink ink;
};

std::optional<CodePageFont> codePageFontOf(const std::string &path) {
    constexpr std::string_view suffix = ".fon";
    const std::string file = std::filesystem::path(path).filename().string();
    std::string_view name(file);
    const Ink ink = name.starts_with('n') ? Ink::negative : Ink::plain;
    name.remove_prefix(ink == Ink::negative ? 1 : 0);
    const std::size_t behind = name.rfind('_');
    if (!name.starts_with("cp") || !name.ends_with(suffix) || behind == name.npos)
        return std::nullopt;

    const CodePage *const codePage = findCodePage(name.substr(2, behind - 2));
    name.remove_prefix(behind + 1);
    name.remove_suffix(suffix.size());
    const auto like = std::ranges::find(builtIn, name, &BuiltIn::name);
    if (!codePage)
        return std::nullopt;
    return CodePageFont{codePage, like == std::end(builtIn) ? nullptr : like, ink};
}

constexpr int fromFixed(FT_Long value) {
    return static_cast<int>((value + 32) >> 6);
}

// The coverage of a bitmap's pixel; bitmaps of other depths than FreeType's own count as empty.
unsigned coverageAt(const FT_Bitmap &bitmap, int x, int y) {
    if (x < 0 || y < 0 || x >= static_cast<int>(bitmap.width) || y >= static_cast<int>(bitmap.rows))
        return 0;
    const unsigned char *row = bitmap.buffer + std::ptrdiff_t{y} * bitmap.pitch;
    if (bitmap.pixel_mode == FT_PIXEL_MODE_MONO)
        return row[x >> 3] & 0x80 >> (x & 7) ? 255 : 0;
    return bitmap.pixel_mode == FT_PIXEL_MODE_GRAY ? row[x] : 0;
}

} // namespace

Font::Font(FT_FaceRec_ *face, Size cell, const CodePage &codePage, Ink ink)
    : face_(face), cell_(cell), codePage_(codePage), ink_(ink) {
    scale();
}

Font::~Font() {
    if (face_)
        FT_Done_Face(face_);
}

void Font::scale() {
    if (!face_) { // characters without a font take their room and show nothing
        if (cell_.width == 0)
            cell_.width = cell_.height / 2;
    } else if (!FT_IS_SCALABLE(face_)) { // in the middle of a cell
        FT_Select_Size(face_, 0);
        const auto &metrics = face_->size->metrics;
        const int own = std::clamp(fromFixed(metrics.height), 1, largestCell);
        if (cell_.height == 0)
            cell_.height = own;
        baseline_ = (cell_.height - own) / 2 + fromFixed(metrics.ascender);
    } else if (cell_.height > 0) {
        fillCell();
    } else {
        FT_Set_Pixel_Sizes(face_, 0, ownEmHeight);
        const auto &metrics = face_->size->metrics;
        cell_.height = std::clamp(fromFixed(metrics.ascender - metrics.descender), 1, largestCell);
        baseline_ = fromFixed(metrics.ascender);
    }
}

// Takes the largest size at which every character keeps within its cell. Characters that are all
// equally wide are spread over its width, but for a little air between them, whatever their height.
void Font::fillCell() {
    const FT_Long units = face_->units_per_EM;
    const FT_Long advance = std::max<FT_Long>(face_->max_advance_width, 1);
    const bool spread = cell_.width > 0 && FT_IS_FIXED_WIDTH(face_);
    for (FT_Long vertical = FT_Long{cell_.height} * 64; vertical >= 64; vertical -= 16) {
        const FT_Long horizontal =
            spread ? FT_Long{cell_.width} * 64 * units / advance * spreadPercent / 100 : vertical;
        FT_Size_RequestRec request{FT_SIZE_REQUEST_TYPE_NOMINAL, horizontal, vertical, 0, 0};
        FT_Request_Size(face_, &request);

        int above = 0, below = 0;
        for (const char32_t character : tallest) {
            if (FT_Load_Char(face_, character, FT_LOAD_DEFAULT) != 0)
                continue;
            const auto &metrics = face_->glyph->metrics;
            above = std::max(above, static_cast<int>((metrics.horiBearingY + 63) >> 6));
            below = std::max(below,
                             static_cast<int>((metrics.height - metrics.horiBearingY + 63) >> 6));
        }
        baseline_ = above;
        if (above + below <= cell_.height)
            return;
    }
}

int Font::width(std::string_view text) {
    int width = 0;
    for (const char character : text)
        width += glyph(character).width;
    return width;
}

Font::Glyph &Font::glyph(char character) {
    Glyph &wanted = glyphs_[static_cast<unsigned char>(character)];
    if (wanted.coverage)
        return wanted;
    render(wanted, character);
    uint8_t *const first = wanted.coverage.get();
    if (ink_ == Ink::negative)
        std::transform(first, first + Size{wanted.width, cell_.height}.area(), first,
                       [](uint8_t covered) { return static_cast<uint8_t>(255 - covered); });
    return wanted;
}

void Font::render(Glyph &glyph, char character) {
    const bool hasUnicode =
        face_ && face_->charmap && face_->charmap->encoding == FT_ENCODING_UNICODE;
    const char32_t meaning = codePage_.decode(character);
    const FT_ULong code =
        hasUnicode ? FT_ULong{meaning} : FT_ULong{static_cast<unsigned char>(character)};
    const bool shown = face_ && static_cast<unsigned char>(character) >= ' ' &&
                       FT_Load_Char(face_, code, FT_LOAD_RENDER) == 0;

    const int advance =
        shown ? std::clamp(fromFixed(face_->glyph->advance.x), 0, largestCell) : cell_.width;
    glyph.width = cell_.width > 0 ? cell_.width : advance;
    glyph.coverage = std::make_unique<uint8_t[]>(
        std::max<std::size_t>(Size{glyph.width, cell_.height}.area(), 1));
    if (!shown)
        return;

    const FT_GlyphSlot slot = face_->glyph;
    const int left = (glyph.width - advance) / 2 + slot->bitmap_left;
    const int top = baseline_ - slot->bitmap_top;
    uint8_t *out = glyph.coverage.get();
    for (int y = 0; y < cell_.height; ++y)
        for (int x = 0; x < glyph.width; ++x)
            *out++ = static_cast<uint8_t>(coverageAt(slot->bitmap, x - left, y - top));
    if (hasUnicode && meaning == capitalIo && !FT_IS_SCALABLE(face_))
        addMissingDots(glyph);
}

// The smallest bitmap fonts draw the letter like the one without dots, below an empty row.
void Font::addMissingDots(Glyph &io) {
    const std::optional<char> like = codePage_.encode(capitalIe);
    if (!like)
        return;
    Glyph ie;
    render(ie, *like);
    const std::size_t count = Size{io.width, cell_.height}.area();
    if (io.width == ie.width &&
        std::equal(io.coverage.get(), io.coverage.get() + count, ie.coverage.get()))
        for (const int x : {io.width / 6, io.width / 2})
            io.coverage[static_cast<std::size_t>(x)] = 255;
}

int Font::inkHeight(std::string_view text) {
    int height = 0;
    for (const char character : text) {
        const Glyph &drawn = glyph(character);
        for (int row = cell_.height; row > height; --row) {
            const uint8_t *first = drawn.coverage.get() + std::ptrdiff_t{row - 1} * drawn.width;
            if (std::any_of(first, first + drawn.width, [](uint8_t ink) { return ink != 0; }))
                height = row;
        }
    }
    return height;
}

Font::Sheet &Font::sheet(Color ink, Color ground) {
    for (Sheet &sheet : sheets_)
        if (sheet.ink == ink && sheet.ground == ground)
            return sheet;
    if (sheets_.size() == mostSheets)
        sheets_.pop_front();
    return sheets_.emplace_back(Sheet{ink, ground, {}});
}

const Color *Font::pixels(Sheet &sheet, char character) {
    auto &cell = sheet.cells[static_cast<unsigned char>(character)];
    if (cell)
        return cell.get();

    const Glyph &source = glyph(character);
    const std::size_t count = Size{source.width, cell_.height}.area();
    cell = std::make_unique<Color[]>(std::max<std::size_t>(count, 1));
    for (std::size_t i = 0; i < count; ++i)
        cell[i] = mix(sheet.ink, sheet.ground, source.coverage[i]);
    return cell.get();
}

Fonts::Fonts() {
    if (FT_Init_FreeType(&library_) != 0)
        library_ = nullptr;

    std::set<std::string_view> missing;
    const auto made = [&](const FontFile &file, Size cell) {
        auto font = open(file.name, cell, terminalCodePage());
        if (!font && missing.insert(file.name).second)
            std::fprintf(stderr,
                         "uti: the font %s is missing, so some texts stay empty: install the "
                         "package %s or name the file's folder in UTI_FONT_PATH\n",
                         file.name, file.package);
        return font ? std::move(font) : std::make_unique<Font>(nullptr, cell, terminalCodePage());
    };
    for (std::size_t slot = 0; slot < std::size(builtIn); ++slot)
        fonts_[slot] = made(builtIn[slot].file, builtIn[slot].cell);
    label_ = made(sansBoldFile, {0, labelHeight});
}

Fonts::~Fonts() {
    known_.clear(); // the faces end before their library
    fonts_.fill(nullptr);
    label_.reset();
    FT_Done_FreeType(library_);
}

std::unique_ptr<Font> Fonts::open(const std::string &name, Size cell, const CodePage &codePage,
                                  Ink ink) {
    const auto path = findFile(name);
    FT_Face face = nullptr;
    if (!path || !library_ || FT_New_Face(library_, path->c_str(), 0, &face) != 0)
        return nullptr;
    if (!face->charmap && face->num_charmaps > 0)
        FT_Set_Charmap(face, face->charmaps[0]);
    return std::make_unique<Font>(face, cell, codePage, ink);
}

std::shared_ptr<Font> Fonts::openOnce(const std::string &file, std::size_t slot) {
    const Size cell = slot < std::size(builtIn) ? builtIn[slot].cell : Size{};
    const std::optional<CodePageFont> own = codePageFontOf(file);
    const CodePage &page = own ? *own->codePage : codePage();
    std::shared_ptr<Font> &font = known_[{file, cell.width, cell.height, page.name()}];
    if (!font)
        font = open(file, cell, page);
    if (!font && own && own->like)
        font = open(own->like->file.name, cell.height > 0 ? cell : own->like->cell, page, own->ink);
    return font;
}

bool Fonts::load(std::size_t slot, const std::string &path) {
    if (slot >= slots)
        return false;
    std::shared_ptr<Font> font = openOnce(path, slot);
    if (!font) {
        notice("the font " + path + " is missing, or is no font: another one stands in for it");
        return false;
    }
    const CodePage *const before = &codePage();
    fonts_[slot] = std::move(font);
    files_[slot] = path;
    if (&codePage() == before)
        return true;
    for (const auto &[other, file] : files_)
        if (std::shared_ptr<Font> again = openOnce(file, other))
            fonts_[other] = std::move(again);
    return true;
}

void Fonts::use(const std::string &codePage) {
    if (findCodePage(codePage) != &this->codePage())
        for (std::size_t slot = 0; slot < 3; ++slot)
            load(slot, "cp" + codePage + '_' + std::string(builtIn[slot].name) + ".fon");
}

std::unique_ptr<Font> Fonts::label(int height) {
    auto font = open(sansBoldFile.name, {0, height}, terminalCodePage());
    return font ? std::move(font)
                : std::make_unique<Font>(nullptr, Size{0, height}, terminalCodePage());
}

Font &Fonts::at(std::size_t slot) {
    if (slot < slots && fonts_[slot])
        return *fonts_[slot];
    notice("no font was loaded into slot " + std::to_string(slot) + ", so slot 1 stands in for it");
    return *fonts_[1];
}

} // namespace uti::host
