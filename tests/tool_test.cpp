// tool_test.cpp: the uti command as a user types it, and its rooms on bytes of every kind.
#include "tests/command.h"
#include "tools/resource_source.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include <unistd.h>

using namespace uti;
using namespace uti::tool;
namespace fs = std::filesystem;

namespace {

std::string readAll(const fs::path &path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

// Runs the command in a folder of its own, sources in src, results in out.
class ToolTest : public testing::Test {
protected:
    ToolTest() {
        fs::create_directories(folder / "src");
        fs::create_directories(folder / "out");
    }
    ~ToolTest() override { fs::remove_all(folder); }

    void write(const fs::path &path, const std::string &bytes) {
        std::ofstream(folder / path, std::ios::binary) << bytes;
    }

    int run(const std::string &arguments, const std::string &from = ".") {
        support::Command command(UTI_TOOL " " + arguments, folder / from);
        const int status = command.wait();
        out = command.out();
        err = command.err();
        return status;
    }

    const fs::path folder = fs::temp_directory_path() / concat("tool_test.", getpid());
    std::string out;
    std::string err;
};

std::string fromHex(std::string_view digits) {
    std::string bytes;
    for (std::size_t at = 0; (at = digits.find_first_not_of(' ', at)) != digits.npos; at += 2)
        bytes += static_cast<char>(std::stoi(std::string(digits.substr(at, 2)), nullptr, 16));
    return bytes;
}

ResourceFile compiled(const std::string &source) {
    Diagnostics diagnostics("source", source);
    ResourceSource result = readResourceSource(diagnostics);
    EXPECT_FALSE(diagnostics.hasErrors()) << source;
    return std::move(result.file);
}

// Reads bytes that may be anything. What can be read must come through a dump unchanged, what
// cannot must be reported.
std::optional<ResourceFile> readAndDump(const std::string &bytes) {
    static const auto codePage = CodePage::open(defaultCodePage);
    Diagnostics diagnostics("bytes");
    std::optional<ResourceFile> file = readResourceFile(bytes, diagnostics);
    EXPECT_NE(file.has_value(), diagnostics.hasErrors());
    if (file) {
        EXPECT_EQ(compiled(writeResourceSource(*file, "m", std::get<0>(codePage))), file);
    }
    return file;
}

constexpr const char *goodSource = R"(module = "good"
version = 300
[languages]
ru = 7
en = 0
[strings]
YES = { id = 0x1002, en = "Yes", ru = "Да" }
EMPTY = { id = 0x1000, en = "", ru = "" }
)";

constexpr const char *goodHex =
    "01 80 5B 00 00 00  02 80 55 00 00 00  01 00 03 00 00 00 04 2C 01  01 81 46 00 00 00 "
    "20 80 1D 00 00 00  21 00 03 00 00 00 01 72 75  22 00 03 00 00 00 04 07 00 "
    "23 00 05 00 00 00 05 61 00 00 00 "
    "20 80 1D 00 00 00  21 00 03 00 00 00 01 65 6E  22 00 03 00 00 00 04 00 00 "
    "23 00 05 00 00 00 05 6F 00 00 00 "
    "0C 00 00 00  00 00 00 00  0C 00 02 00  C4 E0 "
    "0C 00 00 00  00 00 00 00  0C 00 03 00  59 65 73 ";

constexpr const char *oddSource = R"(module = "odd"
root_tag = 0x80FF
[languages]
id = 65535
en = 0
ru = 7
[sections]
4 = { ru = 5, en = 1 }
5 = { id = 9 }
[strings]
ESCAPES = { id = 0x100F, en = "\" \\ \t\n\r\u00A0{0}", ru = { hex = "98" }, text.id = "halo" }
CONTROL = { id = 0x4000, ru = "\u001B" }
SHARED = { id = 0x0000, hex = "00 ff" }
UNEVEN = { id = 0x0002, en = "only" }
ALIKE = { id = 0x2000, en = { hex = "98" }, ru = { hex = "98" } }
LONG = { id = 0x3000, hex = """
00 01 02 03 04 05 06 07 08 09 0A 0B 0C 0D 0E 0F 10 11 12 13 14 15 16 17 18 19 1A 1B 1C 1D 1E 1F
20""" }
)";

TEST_F(ToolTest, LanguagesHaveCodePages) {
    write("m.toml", "module='m'\n[languages]\nru=0\nde={info=7,code_page='cp1252'}\n[strings]\n"
                    "A={id=1,ru='Да',de='Größe'}\n[dialogs.D]\nid=0x3001\ntype='message'\n"
                    "label={area=[0,0,9,9],name={ru='ю',de='ü'}}");
    ASSERT_EQ(run("compile m.toml -o out"), 0) << err;
    EXPECT_NE(readAll(folder / "out/m.res").find("Gr\xF6\xDF\x65"), std::string::npos);
    for (const char *pages : {"", "--code-page de=windows-1252", "--code-page CP1252"}) {
        ASSERT_EQ(run(concat("dump out/m.res --verify ", pages)), 0) << pages << err;
        EXPECT_NE(err.find("compiles to the same"), std::string::npos) << err;
        EXPECT_EQ(out.find("de = \"Größe\"") != std::string::npos, *pages != 0) << out;
        EXPECT_EQ(out.find("de = { info = 7, code_page = \"windows-1252\" }") != std::string::npos,
                  std::string_view(pages).find("de=") != std::string_view::npos);
    }
    EXPECT_EQ(run("dump out/m.res --code-page de=windows-12"), 2);
    EXPECT_NE(err.find("unknown code page \"windows-12\"; did you mean"), std::string::npos) << err;
}

TEST_F(ToolTest, ShowsTheLineAndACaret) {
    write("src/a.toml",
          "module='a'\n[languages]\nen=0\n[strings]\r\nA = { id = 1,\ten = 'Да ₽' }");
    EXPECT_EQ(run("compile src/a.toml -o out"), 1);
    EXPECT_EQ(
        err,
        "src/a.toml:5:24: error: U+20BD '₽' is not in windows-1251; the nearest is 'руб'\n"
        "A = { id = 1,\ten = 'Да ₽' }\n             \t         ^\n");
    EXPECT_TRUE(fs::is_empty(folder / "out"));

    // One line of 30,000 mistakes, cut around each; a hundred are printed, an error before
    // warnings.
    std::string many = "module='a'\n[languages]\nen=0\nru=0\n[strings]\nA={id=0,en=''}\nB={id=1,";
    many += "en='" + std::string(60, '-') + "',ru={hex='0g'},x=1";
    for (int i = 0; i < 30000; ++i)
        many += concat(",k", i, "=1");
    write("src/a.toml", many + "}");
    EXPECT_EQ(run("compile src/a.toml -o out"), 1);
    EXPECT_EQ(std::ranges::count(err, '^'), 100);
    EXPECT_NE(err.find("src/a.toml:7:84: error: a byte is two hex digits\n"
                       "..." +
                       std::string(29, '-') + "',ru={hex='0g'},x=1,k0=1"),
              err.npos)
        << err;
    EXPECT_TRUE(err.ends_with("src/a.toml: 29902 more errors, 1 more warnings\n")) << err;
}

TEST_F(ToolTest, DumpsSourceOfTheSameBytes) {
    const std::string odd = writeResourceFile(compiled(oddSource));
    for (const auto &[source, bytes] :
         {std::pair{goodSource, fromHex(goodHex)}, {oddSource, odd}}) {
        const std::string name = bytes == odd ? "odd" : "good";
        SCOPED_TRACE(name);
        write("src/a.toml", source);
        ASSERT_EQ(run("compile -o out src/a.toml"), 0) << err;
        EXPECT_TRUE(readAll(folder / "out" / (name + ".res")) == bytes);
        ASSERT_EQ(run("dump --verify out/" + name + ".res"), 0) << err;
        EXPECT_NE(err.find(concat("compiles to the same ", bytes.size(), " bytes")), err.npos);
        write("src/a.toml", out);
        ASSERT_EQ(run("compile -o out src/a.toml"), 0) << err;
        EXPECT_TRUE(readAll(folder / "out" / (name + ".res")) == bytes);
    }
}

TEST_F(ToolTest, ReadsOtherLayouts) {
    // A root with an unknown node before the header and a table behind it; language codes with a
    // zero; no info word; one table for two languages, and a block too many.
    const std::string bytes = fromHex(
        "FF 80 75 00 00 00  33 00 01 00 00 00 AA  02 80 5F 00 00 00  05 81 59 00 00 00 "
        "20 80 15 00 00 00  21 00 04 00 00 00 02 65 6E 00  23 00 05 00 00 00 05 72 00 00 00 "
        "20 80 1E 00 00 00  21 00 04 00 00 00 02 72 75 00  23 00 05 00 00 00 05 72 00 00 00 "
        "22 00 03 00 00 00 04 02 00 "
        "20 80 14 00 00 00  21 00 03 00 00 00 01 65 6E  23 00 05 00 00 00 05 00 00 00 00 "
        "04 00 05 00  41 42 43 44 45");
    write("out/m.res", bytes);
    EXPECT_EQ(readAndDump(bytes), compiled("module = 'm'\nroot_tag = 0x80FF\n[languages]\nen = 0\n"
                                           "ru = 2\n[strings]\nA = { id = 0x5000, en = 'ABCDE', "
                                           "ru = 'ABCDE' }"));
    EXPECT_EQ(run("dump --verify out/m.res"), 1);
    EXPECT_NE(err.find("section 5 has en twice"), err.npos) << err;
    EXPECT_NE(err.find("compiles to the same content in another layout"), err.npos) << err;
}

TEST_F(ToolTest, AnswersWithTheRightExitCode) {
    write("src/good.toml", goodSource);
    write("src/hole.toml", "module='h'\n[languages]\nen=0\nru=0\n[strings]\nA={ id=1, en='x' }");
    const struct {
        const char *from;
        const char *arguments;
        int exit;
        const char *message;
    } rows[] = {
        {".", "", 2, "subcommand is required"},
        {".", "compile src/none.toml -o out", 2, "does not exist"},
        {".", "compile src/good.toml -o src/good.toml", 2, "src/good.toml is no folder"},
        {".", "compile src/good.toml -o new/deep", 0, ""},
        {"src", "compile good.toml", 2, "name the folder to write to with -o"},
        {".", "compile src/good.toml", 2, "name the folder to write to with -o"},
        {"out", "compile ../src/good.toml", 0, ""},
        {".", "compile src/good.toml src/good.toml -o out", 1, "has GOOD_MODULE already"},
        {".", "compile src/hole.toml -o out", 0, "6:1: warning: A has no text in ru"},
        {".", "compile --strict src/hole.toml -o out", 1, "6:1: error: A has no text in ru"},
        {".", "compile src/good.toml -o out --header none/good.h", 2, "cannot write none/good.h"},
        {".", "dump src/good.toml", 1, "src/good.toml: error: this is no resource file"},
        {".", "dump out/good.res --code-page utf-16", 2, "is not a single-byte code page"},
    };
    for (const auto &[from, arguments, exit, message] : rows) {
        SCOPED_TRACE(arguments);
        EXPECT_EQ(run(arguments, from), exit);
        EXPECT_NE(err.find(message), err.npos) << err;
        EXPECT_EQ(out, "");
    }
    EXPECT_FALSE(fs::exists(folder / "good.res") || fs::exists(folder / "src/good.res"));
    EXPECT_TRUE(fs::exists(folder / "new/deep/good.res"));
    EXPECT_EQ(run("--version"), 0);
    EXPECT_EQ(out, "1.1.25.4\n");
}

TEST_F(ToolTest, WritesAHeaderAndOnlyWhatChanged) {
    write("src/good.toml", goodSource);
    write("src/b.toml", "module = 'B2'\n");
    const std::string command = "compile src/good.toml src/b.toml -o out --header out/ids.h";
    ASSERT_EQ(run(command), 0) << err;
    EXPECT_EQ(readAll(folder / "out/ids.h"),
              "/* String ids, made by uti compile; do not edit. */\n#ifndef UTI_RESOURCES_IDS_H\n"
              "#define UTI_RESOURCES_IDS_H\n\n/* good.toml */\n#define GOOD_MODULE \"good\"\n"
              "#define GOOD_VERSION 300\nenum {\n    GOOD_YES = 0x1002,\n    GOOD_EMPTY = "
              "0x1000,\n};\n\n/* b.toml */\n"
              "#define B2_MODULE \"B2\"\n#define B2_VERSION 0\n\n#endif\n");

    const auto hourAgo = fs::file_time_type::clock::now() - std::chrono::hours(1);
    for (const fs::path &file : fs::directory_iterator(folder / "out"))
        fs::last_write_time(file, hourAgo);
    write("src/b.toml", "module = 'B2'\nversion = 0\n");
    ASSERT_EQ(run(command), 0) << err;
    const auto recently = hourAgo + std::chrono::minutes(30);
    for (const fs::path &file : fs::directory_iterator(folder / "out"))
        EXPECT_EQ(fs::last_write_time(file) > recently, file.filename() == "B2.res") << file;
    EXPECT_EQ(std::distance(fs::directory_iterator(folder / "out"), {}), 3);
}

// A table of strings that share their bytes: small to store, huge to write out.
TEST(ToolRooms, RefuseFilesThatGrow) {
    const char *source = "module='m'\n[languages]\nen=0\n[strings]\nA = { id = 0xFFF, en = '' }";
    std::string bytes = writeResourceFile(compiled(source));
    ASSERT_TRUE(readAndDump(bytes));
    for (std::size_t entry = bytes.size() - 0x4000; entry < bytes.size(); entry += 4)
        bytes.replace(entry, 4, fromHex("00 20 00 20"));
    EXPECT_FALSE(readAndDump(bytes));
}

#ifdef UTI_TOOLKIT
TEST_F(ToolTest, ShowsDialogsAsTheTerminalDoes) {
    write("src/s.toml", "module = 's'\n[languages]\nen = 0\nru = 0\n"
                        "[strings]\nNONE = { id = 0x3009, en = 'No dialog', ru = 'Не диалог' }\n"
                        "[dialogs.EDIT]\nid = 0x3001\ntype = 'edit'\nedit = ["
                        "{ area = [8, 20, 220, 20], read_only = true }, { area = [8, 50, 220, 30], "
                        "pattern = { en = '__.__', ru = '__-__' } }]\n"
                        "label = { name = 'sum', area = [8, 90, 220, 20] }\n"
                        "[dialogs.LIST]\nid = 0x3002\ntype = 'list'\n"
                        "menu = { area = [0, 0, 240, 100] }\n");
    EXPECT_EQ(run("compile src/s.toml -o out"), 0) << err;
    EXPECT_EQ(run("show out/s.res --out src"), 0) << err;
    EXPECT_EQ(out, "s-3001-en.png\ns-3001-en.txt\ns-3001-ru.png\ns-3001-ru.txt\n"
                   "s-3002-en.png\ns-3002-en.txt\ns-3002-ru.png\ns-3002-ru.txt\n");
    EXPECT_EQ(readAll(folder / "src/s-3001-ru.txt"),
              "display 240x320\nstatus 12:00 abc\nform 0,20 240x300 \"s 0x3001\" running\n"
              "  input 8,20 220x20 \"Text\"\n  pattern 8,50 220x30 \"..-..\" focus\n"
              "  input 8,90 220x20 \"sum\"\n");
    EXPECT_TRUE(readAll(folder / "src/s-3002-en.png").starts_with("\x89PNG"));

    EXPECT_EQ(run("show s.res --dialog 0x3002 --lang ru", "out"), 0) << err;
    EXPECT_EQ(out, "s-3002-ru.png\ns-3002-ru.txt\n");
    EXPECT_TRUE(fs::exists(folder / "out/s-3002-ru.png"));

    EXPECT_EQ(run("show out/s.res --dialog 0x3009"), 1);
    EXPECT_EQ(err, "out/s.res: error: there is no such dialog\n");
    fs::copy(folder / "out/s.res", folder / "out/no module.res");
    EXPECT_EQ(run("show 'out/no module.res'"), 2);
    EXPECT_EQ(run("show out/s.res --out src/s.toml"), 2);
    const std::string bytes = readAll(folder / "out/s.res");
    write("out/s.res", bytes.substr(0, bytes.size() - 1));
    EXPECT_EQ(run("show out/s.res"), 1);
    EXPECT_FALSE(err.empty());
}
#endif

} // namespace
