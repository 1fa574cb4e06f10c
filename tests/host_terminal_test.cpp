// The desktop stand-in of the terminal's system API, through its public header, on a temporary
// directory, a pseudo-terminal and the real clock. Windows-1251 letters are \x escapes.
#include "terminal.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <sys/stat.h>
#include <thread>

namespace {

using namespace std::string_literals;

class Host : public testing::Test {
protected:
    Host() : path(mkdtemp((testing::TempDir() + "host-XXXXXX").data()) + "/f"s) {}
    ~Host() override { std::filesystem::remove_all(std::filesystem::path(path).parent_path()); }

    void put(const std::string &bytes) { std::ofstream(path) << bytes; }
    std::string contents() {
        std::ifstream file(path);
        return {std::istreambuf_iterator(file), {}};
    }
    // Calls `File_Write` or `ComPort_Write`.
    static int32_t write(decltype(File_Write) call, int32_t handle, const std::string &bytes) {
        return call(handle, bytes.data(), static_cast<uint32_t>(bytes.size()));
    }
    static std::string read(int32_t handle) {
        std::string bytes(99, '?');
        const int32_t got = File_Read(handle, bytes.data(), 99);
        return got < 0 ? "failed" : bytes.substr(0, static_cast<std::size_t>(got));
    }
    static int32_t openPort(const std::string &device, uint32_t speed = 9, uint32_t format = 4) {
        setenv("UTI_COM7", device.c_str(), 1);
        const ComPortParameters parameters{7, {}, speed, format};
        return ComPort_Open(&parameters);
    }
    std::string path;
};

TEST_F(Host, FileModes) {
    const struct {
        int32_t written; // the result of writing "new" at once after opening
        std::string rest, after;
    } rows[] = {{3, "failed", "new"}, {-EBADF, "long old", "long old"}, {3, "g old", "newg old"}};
    for (int32_t mode = FILE_MODE_CREATE; mode <= FILE_MODE_APPEND; ++mode) {
        SCOPED_TRACE(mode);
        const auto &[written, rest, after] = rows[mode];
        EXPECT_EQ(File_IsValid(path.c_str()), mode == FILE_MODE_CREATE ? 0 : 1);
        EXPECT_EQ(File_Delete(path.c_str()) == 0, mode != FILE_MODE_CREATE);
        EXPECT_EQ(File_Close(File_Open(path.c_str(), mode)) == 0, mode != FILE_MODE_READ);
        put("long old");
        const int32_t handle = File_Open(path.c_str(), mode);
        EXPECT_EQ(write(File_Write, handle, "new"), written);
        EXPECT_EQ(read(handle), rest);
        EXPECT_EQ(File_GetLength(handle), static_cast<int32_t>(after.size()));
        EXPECT_EQ(File_SetPosition(handle, 2), 0);
        EXPECT_EQ(read(handle), mode == FILE_MODE_CREATE ? "failed" : after.substr(2));
        EXPECT_EQ(File_Close(handle), 0);
        EXPECT_EQ(contents(), after);
    }
    EXPECT_TRUE(File_Open(path.c_str(), -1) < 0 && File_Open(path.c_str(), 3) < 0);
}

TEST_F(Host, HandlesOfOthersAreRefused) {
    put("kept");
    const int32_t stale = File_Open(path.c_str(), FILE_MODE_READ);
    EXPECT_EQ(File_Close(stale), 0);
    const int32_t open = File_Open(path.c_str(), FILE_MODE_APPEND), port = openPort(path);
    std::vector<int32_t> handles{-1, INT32_MIN, INT32_MAX, stale, port};
    for (int32_t descriptor = 0; descriptor < 32; ++descriptor)
        handles.push_back(descriptor == open ? -1 : descriptor);
    for (const int32_t handle : handles) {
        SCOPED_TRACE(handle);
        EXPECT_EQ(File_Close(handle) + write(File_Write, handle, "x"), 2 * -EBADF);
        EXPECT_EQ(File_SetPosition(handle, 0) + File_GetLength(handle), 2 * -EBADF);
        EXPECT_EQ(read(handle), "failed");
    }
    EXPECT_EQ(write(ComPort_Write, open, "x") + ComPort_Close(open), 2 * -EBADF);
    EXPECT_EQ(write(ComPort_Write, port, " and sent") + ComPort_Close(port), 9);
    EXPECT_EQ(read(open), "kept and sent");
    EXPECT_EQ(File_Close(open), 0);
}

TEST_F(Host, OnlyRegularFilesAreFiles) {
    ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
    TerminalDate date{};
    TerminalTime time{};
    std::filesystem::create_symlink("/dev/null", path + "0"); // so that deleting it would be safe
    for (const std::string &name : {path, path + "/no", path + "0", testing::TempDir(), ""s}) {
        SCOPED_TRACE(name);
        EXPECT_EQ(File_IsValid(name.c_str()), 0);
        EXPECT_EQ(File_GetTime(name.c_str(), &date, &time) + date.year, 0);
        EXPECT_LT(File_Delete(name.c_str()), 0);
        for (int32_t mode = FILE_MODE_CREATE; mode <= FILE_MODE_APPEND; ++mode)
            EXPECT_LT(File_Open(name.c_str(), mode), 0) << mode;
    }
    EXPECT_TRUE(File_IsValid(nullptr) == 0 && File_Open(nullptr, FILE_MODE_READ) < 0);
}

TEST_F(Host, TimesFollowTheZone) {
    TerminalDate date;
    TerminalTime time;
    const auto moment = [&] {
        std::tm local{time.second,      time.minute, time.hour, date.day, date.month - 1,
                      date.year - 1900, 0,           0,         -1,       0,
                      nullptr};
        return std::mktime(&local);
    };
    put("");
    const timespec changed[2] = {{}, {1774746000, 0}}; // 2026-03-29, when summer time begins
    utimensat(AT_FDCWD, path.c_str(), changed, 0);
    for (const char *zone : {"CET-1CEST,M3.5.0,M10.5.0/3", "XYZ-23:30"}) {
        SCOPED_TRACE(zone);
        setenv("TZ", zone, 1);
        EXPECT_EQ(File_GetTime(path.c_str(), &date, &time), 1);
        EXPECT_EQ(moment(), changed[1].tv_sec);

        const uint32_t start = GetTicks();
        Wait(0);
        WaitSleep(1001); // into a new second, with which the clock forgets the former zone
        EXPECT_GE(GetTicks() - start, 1000u);
        const std::time_t before = std::time(nullptr);
        GetDateTime(&date, &time);
        EXPECT_TRUE(before <= moment() && moment() <= std::time(nullptr));
    }
    unsetenv("TZ");
}

// Every size from 0 to 9 gives the text cut to it and leaves the bytes behind it alone.
void expectCut(const std::string &text, int32_t (*fill)(char *, int32_t)) {
    for (int32_t size = 0; size < 10; ++size) {
        SCOPED_TRACE(text + " in " + std::to_string(size));
        const std::string kept = text.substr(0, static_cast<std::size_t>(std::max(size - 1, 0)));
        const std::string rest(10 - kept.size(), '#');
        std::string out(11, '#');
        EXPECT_EQ(fill(out.data(), size), static_cast<int32_t>(kept.size()));
        EXPECT_EQ(out, size > 0 ? kept + '\0' + rest : rest + '#');
    }
}

TEST_F(Host, TextsAndNumbersFitTheirBuffer) {
    const auto variable = [](char *out, int32_t size) { return System_GetEnv("V", out, size, 0); };
    setenv("V", "12345678", 1);
    expectCut("12345678", variable);
    unsetenv("V");
    expectCut("", variable);
    expectCut(std::filesystem::read_symlink("/proc/self/exe").filename(), GetApplicationName);
    char out[34];
    EXPECT_STREQ(Int64ToStr(INT64_MIN, out, sizeof out), "-9223372036854775808");
    EXPECT_STREQ(Int64ToStr(INT64_MIN, out, 3), "-9");
    EXPECT_STREQ(Int64ToStr(5, out, 0), "-9");
    EXPECT_STREQ(UInt64ToStr(UINT64_MAX, out, sizeof out), "18446744073709551615");
    EXPECT_LE(System_GetEnv("PATH", out, -1, 0) + System_GetEnv(nullptr, nullptr, 5, 0), 0);
    EXPECT_STREQ(ltoa(INT32_MIN, out, 10), "-2147483648");
    EXPECT_STREQ(ltoa(-2, out, 16), "fffffffe");
    EXPECT_EQ(ltoa(-1, out, 2), std::string(32, '1'));
    EXPECT_STREQ(ltoa(35, out, 36), "z");
    EXPECT_STREQ(ltoa(1, out, 1), "");
}

TEST_F(Host, LetterCaseOfWindows1251) {
    std::string text = "AZ\xC0\xDF\xA8\xA5\xAA\xAF\xB2\xA1\x80\x81\x8A\x8C\x8D\x8E\x8F\xA3\xBD";
    TextToLowercase(text.data(), text.data(), 18);
    EXPECT_EQ(text, "az\xE0\xFF\xB8\xB4\xBA\xBF\xB3\xA2\x90\x83\x9A\x9C\x9D\x9E\x9F\xBC\xBD");
    int letters = 0;
    for (int byte = 0; byte < 256; ++byte) {
        const char c = static_cast<char>(byte);
        char lower, upper;
        TextToLowercase(&c, &lower, 1);
        TextToUppercase(&c, &upper, 1);
        letters += lower != upper;
        TextToUppercase(&lower, &lower, 1);
        EXPECT_EQ(lower, upper) << byte;
    }
    EXPECT_EQ(letters, 2 * (26 + 32 + 15));
}

TEST_F(Host, ByteOrder) {
    char bytes[] = "\x80\xFF\x02\0\0\0\0\0\0\xF0\xBF";
    EXPECT_EQ(BufferToWord(bytes + 1), 0x02FF);
    EXPECT_EQ(BufferToDword(bytes), 0x02FF80u);
    EXPECT_EQ(BEBufferToShort(bytes), -32513);
    EXPECT_EQ(BufferToDouble(bytes + 3), -1.0);
    ShortToBEBuffer(-2, bytes + 1);
    LongToBEBuffer(INT32_MIN + 0x010203, bytes + 3);
    EXPECT_STREQ(bytes, "\x80\xFF\xFE\x80\x01\x02\x03");
    LongToBEBuffer(BufferToWord(nullptr), nullptr);
}

TEST_F(Host, SerialPortPassesEveryByte) {
    std::string sent, received(100000, '?');
    for (int i = 0; i < 100000; ++i)
        sent += static_cast<char>(i);
    const int master = posix_openpt(O_RDWR | O_NOCTTY);
    ASSERT_EQ(grantpt(master) | unlockpt(master), 0);
    const int32_t port = openPort(ptsname(master));
    ASSERT_GE(port, 0);
    std::thread reader([&] {
        for (char &c : received)
            EXPECT_EQ(::read(master, &c, 1), 1);
    });
    EXPECT_EQ(write(ComPort_Write, port, sent), 100000);
    reader.join();
    EXPECT_TRUE(received == sent);
    const int32_t taken = write(ComPort_Write, port, std::string(1 << 20, 'x')); // nobody reads
    EXPECT_TRUE(taken > 0 && taken < 1 << 20) << taken;
    EXPECT_EQ(ComPort_Close(port), 0);
    ::close(master);
}

TEST_F(Host, SerialPortNeedsItsPathButNoReader) {
    for (const std::string &device : {""s, "/"s, path})
        EXPECT_LT(openPort(device), 0) << device;
    ASSERT_EQ(mkfifo(path.c_str(), 0600), 0) << "a missing device is not created";
    EXPECT_TRUE(openPort(path, 10) < 0 && openPort(path, 9, 3) < 0 && ComPort_Open(nullptr) < 0);
    const int32_t port = openPort(path);
    EXPECT_EQ(write(ComPort_Write, port, "early"), 5);
    EXPECT_EQ(std::ifstream(path).get(), 'e');
    EXPECT_EQ(write(ComPort_Write, port, "late"), 4);
    EXPECT_EQ(ComPort_Close(port), 0);
}

TEST_F(Host, PrinterAppendsToItsFile) {
    unsetenv("UTI_PRINTER");
    EXPECT_NE(Printer_Open(nullptr), 0);
    setenv("UTI_PRINTER", path.c_str(), 1);
    for (const char *expected : {"\r\nA\xCF", "\r\nA\xCF\r\nA\xCF"}) {
        EXPECT_NE(Printer_PrintString("closed", 0), 0);
        EXPECT_EQ(Printer_Open(nullptr), 0);
        EXPECT_NE(Printer_Open(nullptr), 0);
        EXPECT_EQ(Printer_PrintString("\r\nA", 0) + Printer_PrintString("\xCF", 0), 0);
        EXPECT_NE(Printer_PrintString(nullptr, 0), 0);
        EXPECT_EQ(contents(), expected);
        EXPECT_EQ(Printer_Close() + Printer_Close(), 0);
    }
}

TEST_F(Host, PaperHasColumns) {
    setenv("UTI_PRINTER", path.c_str(), 1);
    std::string expected;
    for (const auto &[columns, width] : {std::pair("", 32u), {"48", 48u}, {"33", 32u}}) {
        SCOPED_TRACE(columns);
        setenv("UTI_PRINTER_COLUMNS", columns, 1);
        const std::string line(width, '='), more(width - 1, '-');
        EXPECT_EQ(Printer_Open(nullptr), 0);
        EXPECT_EQ(Printer_PrintString((line + "\r\n" + line).c_str(), 0), 0);
        EXPECT_EQ(Printer_PrintString("x", 0) + Printer_PrintString((more + "yz").c_str(), 0), 0);
        Printer_Close();
        expected += line + "\r\n" + line + "\nx" + more + "\nyz";
        EXPECT_EQ(contents(), expected);
    }
    unsetenv("UTI_PRINTER_COLUMNS");
}

} // namespace
