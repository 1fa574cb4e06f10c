// fonts.h: the twelve font slots of the display, the one place that knows how large characters are.
// Every character is a cell: as high as its font, and as wide as the pen moves on for it. A font
// says which character a byte is. Stands on FreeType and the code pages.
#pragma once

#include "host/toolkit/code_page.h"
#include "host/toolkit/surface.h"

#include <array>
#include <deque>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <tuple>

struct FT_FaceRec_;
struct FT_LibraryRec_;

namespace uti::host {

enum class Ink : uint8_t { plain, negative }; // negative: the ground is drawn, the character not

class Font {
public:
    // All cells of one pair of colours, laid out as pixels, so that a character on a plain ground
    // is copied and not mixed.
    struct Sheet {
        Color ink;
        Color ground;
        std::array<std::unique_ptr<Color[]>, 256> cells;
    };

    // `cell` is the size that every character takes; a width of 0 leaves each its own width, and a
    // height of 0 leaves the font its own size. The face becomes the font's; the code page must
    // outlive it.
    Font(FT_FaceRec_ *face, Size cell, const CodePage &codePage, Ink ink = Ink::plain);
    ~Font();
    Font(const Font &) = delete;
    Font &operator=(const Font &) = delete;

    const CodePage &codePage() const { return codePage_; }
    int height() const { return cell_.height; }
    int width(char character) { return glyph(character).width; }
    int width(std::string_view text);
    // The rows of pixels from the top of a line to the end of its ink.
    int inkHeight(std::string_view text);

    // The coverage of a cell, 0 to 255, row by row.
    const uint8_t *coverage(char character) { return glyph(character).coverage.get(); }

    // A sheet stays valid until the next call.
    Sheet &sheet(Color ink, Color ground);
    const Color *pixels(Sheet &sheet, char character);

private:
    struct Glyph {
        int width = 0;
        std::unique_ptr<uint8_t[]> coverage; // null until the character is drawn first
    };

    void scale();
    void fillCell();
    Glyph &glyph(char character);
    void render(Glyph &glyph, char character);
    void addMissingDots(Glyph &io);

    FT_FaceRec_ *face_;
    Size cell_;
    const CodePage &codePage_;
    Ink ink_;
    int baseline_ = 0; // from the top of the cell
    std::array<Glyph, 256> glyphs_;
    std::deque<Sheet> sheets_;
};

class Fonts {
public:
    static constexpr std::size_t slots = 12;

    // Loads the built-in fonts: slots 0 to 2 hold "6x8", "12x16" and "16x24", 3 to 5 their sisters
    // for digits, the larger two of them bold. Says on standard error which package is missing.
    Fonts();
    ~Fonts();
    Fonts(const Fonts &) = delete;
    Fonts &operator=(const Fonts &) = delete;

    // Loads a font file into a slot. The slots 0 to 5 keep their cells; the others take the size of
    // a bitmap font, or 16 pixels to the em. False, with the slot unchanged, when that fails.
    //
    // A font of a code page, such as cp1252_12x16.fon or the negative ncp1252_12x16.fon, is made of
    // the built-in one when there is no such file. Other files, which have all characters, show
    // those of the code page of slot 1.
    bool load(std::size_t slot, const std::string &path);

    // Loads the fonts of a code page into the slots 0 to 2, as an application does for a language.
    void use(const std::string &codePage);

    // That of slot 1: the one in which texts are typed and files without a code page show them.
    const CodePage &codePage() const { return fonts_[1]->codePage(); }

    // The font of a slot; slot 1 for one that is empty or does not exist.
    Font &at(std::size_t slot);

    // A small proportional font for the status line.
    Font &label() const { return *label_; }

    // The same at another height, for what stands beside the display. Ends before the slots do.
    std::unique_ptr<Font> label(int height);

private:
    std::unique_ptr<Font> open(const std::string &name, Size cell, const CodePage &codePage,
                               Ink ink = Ink::plain);
    // The font of a file for a slot, in its own code page or that of slot 1; null when there is
    // none.
    std::shared_ptr<Font> openOnce(const std::string &file, std::size_t slot);

    FT_LibraryRec_ *library_ = nullptr;
    std::array<std::shared_ptr<Font>, slots> fonts_;
    std::map<std::size_t, std::string> files_; // of the slots that were loaded
    // By file, cell and code page, so that going back to a code page is cheap.
    std::map<std::tuple<std::string, int, int, std::string>, std::shared_ptr<Font>> known_;
    std::unique_ptr<Font> label_;
};

} // namespace uti::host
