// process.h: programs as processes of their own and the processor time that they take.
#pragma once

#include <string>
#include <vector>

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace uti::bench {

inline double seconds(const timeval &time) {
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) * 1e-6;
}

// Runs a program, which is looked for as the shell does, with its standard output in a file.
// Returns the processor time that it took, in seconds; negative when it failed.
inline double run(const std::vector<std::string> &command, const char *output = "/dev/null") {
    std::vector<char *> words;
    for (const std::string &word : command)
        words.push_back(const_cast<char *>(word.c_str()));
    words.push_back(nullptr);

    const pid_t child = fork();
    if (child == 0) {
        const int file = open(output, O_CREAT | O_TRUNC | O_WRONLY, 0644);
        if (file < 0 || dup2(file, STDOUT_FILENO) < 0)
            _exit(127);
        execvp(words[0], words.data());
        _exit(127);
    }
    int status;
    rusage used;
    if (child < 0 || wait4(child, &status, 0, &used) != child || status != 0)
        return -1;
    return seconds(used.ru_utime) + seconds(used.ru_stime);
}

} // namespace uti::bench
