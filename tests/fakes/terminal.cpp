#include "terminal.h"

#include "toolkit.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace fake {

namespace {

struct Armed {
    int countdown = 0; // 0: no fault
    Persistence persistence = Persistence::once;
};

struct OpenFile {
    std::string path;
    std::size_t position;
};

struct State {
    Terminal terminal;
    std::map<int32_t, OpenFile> open;
    Armed faults[static_cast<int>(Call::count)];
    bool struck = false;
    bool printerOpen = false;
};

State &state() {
    static State instance;
    return instance;
}

OpenFile *find(int32_t handle) {
    const auto found = state().open.find(handle);
    return found == state().open.end() ? nullptr : &found->second;
}

void changeDisk() {
    if (terminal().onDisk)
        terminal().onDisk();
}

void note(const std::string &call) {
    std::string &calls = terminal().calls;
    calls += (calls.empty() ? "" : "; ") + call;
}

} // namespace

std::string Terminal::printedText() const {
    std::string all;
    for (const std::string &piece : printed)
        all += piece;
    return all;
}

Terminal &terminal() {
    return state().terminal;
}

void reset() {
    state() = State{};
    resetToolkit();
}

void failCall(Call kind, int nth, Persistence persistence) {
    state().faults[static_cast<int>(kind)] = {nth, persistence};
    state().struck = false;
}

void disarm() {
    for (Armed &fault : state().faults)
        fault = {};
}

bool faultStruck() {
    return state().struck;
}

bool fails(Call kind) {
    Armed &fault = state().faults[static_cast<int>(kind)];
    if (fault.countdown == 0 || --fault.countdown > 0)
        return false;
    if (fault.persistence == Persistence::fromThenOn)
        fault.countdown = 1;
    return state().struck = true;
}

} // namespace fake

using namespace fake;

int32_t File_Open(const char *path, int32_t mode) {
    note("open " + std::string(path) + " " + std::to_string(mode));
    auto &files = terminal().files;
    if (fails(Call::open) || (mode == FILE_MODE_READ && !files.contains(path)))
        return -7;
    if (mode == FILE_MODE_CREATE)
        terminal().deleted += std::exchange(files[path], {});
    files[path];
    changeDisk();
    const int32_t handle = state().open.empty() ? 10 : state().open.rbegin()->first + 1;
    state().open[handle] = {path, 0};
    ++terminal().openFiles;
    return handle;
}

int32_t File_Close(int32_t handle) {
    note("close");
    if (!state().open.erase(handle))
        return -1;
    --terminal().openFiles;
    return fails(Call::close) ? -1 : 0;
}

int32_t File_Read(int32_t handle, void *buffer, uint32_t count) {
    OpenFile *file = find(handle);
    if (!file || fails(Call::read))
        return -1;
    const std::string &bytes = terminal().files[file->path];
    const std::size_t left = bytes.size() - std::min(bytes.size(), file->position);
    const std::size_t done = std::min<std::size_t>(count, left);
    if (done > 0)
        std::memcpy(buffer, bytes.data() + file->position, done);
    file->position += done;
    return static_cast<int32_t>(done);
}

int32_t File_Write(int32_t handle, const void *buffer, uint32_t count) {
    note("write " + std::to_string(count));
    OpenFile *file = find(handle);
    if (!file)
        return -1;
    const uint32_t done = fails(Call::write) ? count / 2 : count;
    // Byte by byte only where somebody looks on.
    std::string &bytes = terminal().files[file->path];
    const uint32_t step = terminal().onDisk ? 1 : std::max(done, 1u);
    for (uint32_t at = 0; at < done; at += step) {
        bytes.resize(std::max(bytes.size(), file->position + step));
        std::memcpy(bytes.data() + file->position, static_cast<const char *>(buffer) + at, step);
        file->position += step;
        changeDisk();
    }
    return static_cast<int32_t>(done);
}

int32_t File_SetPosition(int32_t handle, uint32_t offset) {
    OpenFile *file = find(handle);
    if (!file || fails(Call::seek))
        return -1;
    file->position = offset;
    return 0;
}

int32_t File_GetLength(int32_t handle) {
    const OpenFile *file = find(handle);
    if (!file || fails(Call::length))
        return -1;
    return static_cast<int32_t>(terminal().files[file->path].size());
}

int32_t File_GetTime(const char *path, TerminalDate *date, TerminalTime *time) {
    const auto found = terminal().fileTimes.find(path);
    if (fails(Call::fileTime) || found == terminal().fileTimes.end())
        return 0;
    *date = found->second.date;
    *time = found->second.time;
    return 1;
}

int32_t File_IsValid(const char *path) {
    return !fails(Call::isValid) && terminal().files.contains(path) ? 1 : 0;
}

int32_t File_Delete(const char *path) {
    note("delete " + std::string(path));
    const auto found = terminal().files.find(path);
    if (fails(Call::remove) || found == terminal().files.end())
        return -1;
    terminal().deleted += found->second;
    terminal().files.erase(found);
    changeDisk();
    return 0;
}

int32_t ComPort_Open(const void *parameters) {
    std::memcpy(&terminal().port, parameters, sizeof(ComPortParameters));
    return fails(Call::comOpen) ? -5 : 3;
}

int32_t ComPort_Write(int32_t, const void *buffer, uint32_t count) {
    if (fails(Call::comWrite))
        return 0;
    terminal().serial.append(static_cast<const char *>(buffer), count);
    return static_cast<int32_t>(count);
}

int32_t ComPort_Close(int32_t) {
    note("close port");
    return 0;
}

int32_t Printer_Open(const void *) {
    if (fails(Call::printerOpen))
        return 4;
    state().printerOpen = true;
    return 0;
}

int32_t Printer_PrintString(const char *text, int32_t) {
    if (!state().printerOpen || fails(Call::print))
        return 1;
    terminal().printed.push_back(text);
    return 0;
}

int32_t Printer_Close(void) {
    state().printerOpen = false;
    return 0;
}

void GetDateTime(TerminalDate *date, TerminalTime *time) {
    *date = terminal().now.date;
    *time = terminal().now.time;
}

uint32_t GetTicks(void) {
    return terminal().ticks;
}

void Wait(uint32_t milliseconds) {
    terminal().ticks += milliseconds;
}

void WaitSleep(uint32_t milliseconds) {
    terminal().ticks += milliseconds;
    if (const auto wake = terminal().onWait)
        wake();
}

int32_t Display_GetHandle(void) {
    return fails(Call::display) ? noDisplay : 1;
}

int32_t Display_CheckEvent(void) {
    return terminal().displayEvent;
}

void Display_SetCursorPosition(uint8_t column, uint8_t row) {
    terminal().cursor = std::to_string(column) + ' ' + std::to_string(row);
}

uint8_t Keyboard_GetLastKey(void) {
    return std::exchange(terminal().lastKey, uint8_t{0});
}

void Keyboard_Reset(void) {
    terminal().lastKey = 0;
}

int32_t Terminal_GetType(void) {
    return terminal().type;
}

namespace {

int32_t copyText(const std::string &text, char *buffer, int32_t size) {
    const std::size_t count = std::min(text.size(), static_cast<std::size_t>(size - 1));
    std::memcpy(buffer, text.data(), count);
    buffer[count] = 0;
    return static_cast<int32_t>(count);
}

} // namespace

int32_t System_GetEnv(const char *name, char *buffer, int32_t size, int32_t) {
    const auto found = terminal().environment.find(name);
    if (fails(Call::environment) || found == terminal().environment.end())
        return -1;
    return copyText(found->second, buffer, size);
}

void Terminal_NoteAssertion(const char *, int32_t) {
    ++terminal().assertions;
}

int32_t GetApplicationName(char *buffer, int32_t size) {
    return copyText(terminal().applicationName, buffer, size);
}
