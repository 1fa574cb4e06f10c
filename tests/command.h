// command.h: a line of the shell, run to its end or beside the test, and what it wrote. The line
// itself sets the environment and names files to read. Stands on POSIX alone.
#pragma once

#include <chrono>
#include <filesystem>
#include <string>
#include <string_view>
#include <thread>

#include <csignal>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

namespace support {

class Command {
public:
    // Starts the line in `folder`, with `input` as its standard input.
    explicit Command(const std::string &line, const std::filesystem::path &folder = ".",
                     std::string_view input = {}) {
        append(in_, input);
        lseek(in_, 0, SEEK_SET);
        child_ = fork();
        if (child_ != 0)
            return;
        setpgid(0, 0);
        dup2(in_, STDIN_FILENO);
        dup2(out_, STDOUT_FILENO);
        dup2(err_, STDERR_FILENO);
        if (chdir(folder.c_str()) == 0)
            execl("/bin/sh", "sh", "-c", line.c_str(), nullptr);
        _exit(127);
    }
    ~Command() {
        end();
        for (const int file : {in_, out_, err_})
            close(file);
    }
    Command(const Command &) = delete;
    Command &operator=(const Command &) = delete;

    // Waits for the end. Returns the exit code, or -1 when a signal ended it or it took too long.
    int wait(std::chrono::milliseconds most = std::chrono::minutes(2)) {
        using namespace std::chrono;
        int status = -1;
        for (const auto until = steady_clock::now() + most;;) {
            const pid_t ended = waitpid(child_, &status, WNOHANG);
            if (ended == child_) {
                child_ = 0;
                return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
            }
            if (ended < 0 || steady_clock::now() > until)
                return -1;
            std::this_thread::sleep_for(milliseconds(1));
        }
    }

    // To it and whatever it started: SIGSTOP, SIGCONT.
    void signal(int number) { kill(-child_, number); }

    // Ends it and whatever it started.
    void end() {
        if (child_ <= 0)
            return;
        setpgid(child_, child_); // it may not have come to that yet
        kill(-child_, SIGKILL);
        waitpid(child_, nullptr, 0);
        child_ = 0;
    }

    // What it has written so far.
    std::string out() const { return contents(out_); }
    std::string err() const { return contents(err_); }

private:
    static void append(int file, std::string_view bytes) {
        while (!bytes.empty()) {
            const ssize_t count = ::write(file, bytes.data(), bytes.size());
            if (count <= 0)
                return;
            bytes.remove_prefix(static_cast<std::size_t>(count));
        }
    }

    static std::string contents(int file) {
        std::string bytes;
        char block[4096];
        for (ssize_t count;
             (count = pread(file, block, sizeof block, static_cast<off_t>(bytes.size()))) > 0;)
            bytes.append(block, static_cast<std::size_t>(count));
        return bytes;
    }

    int in_ = memfd_create("in", MFD_CLOEXEC);
    int out_ = memfd_create("out", MFD_CLOEXEC);
    int err_ = memfd_create("err", MFD_CLOEXEC);
    pid_t child_ = 0;
};

} // namespace support
