// What jsoncpp's reader makes of a text: the reference for ParseJson().
#pragma once

#include <json/json.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <exception>
#include <string>

// Returns whether the reader accepts the text, and the document. An exception counts as no. A jsoncpp that is built
// without exceptions, as on a television, aborts instead; a child process tries that.
inline bool ReaderAccepts(const std::string& text, Json::Value& document) {
    const auto accepts = [&] { return Json::Reader().parse(text.data(), text.data() + text.size(), document, true); };
#if JSON_USE_EXCEPTION
    try {
        return accepts();
    } catch (const std::exception&) {
        return false;
    }
#else
    // The only reason is nesting of 1000 levels.
    if (std::count_if(text.begin(), text.end(), [](char c) { return c == '[' || c == '{'; }) < 1000) return accepts();
    const pid_t child = fork();
    if (child == 0) {
        const rlimit noCore{};
        setrlimit(RLIMIT_CORE, &noCore);
        close(STDERR_FILENO);
        _exit(accepts() ? 0 : 1);
    }
    int status = -1;
    return child > 0 && waitpid(child, &status, 0) == child && status == 0 && accepts();
#endif
}
