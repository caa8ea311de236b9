#include "terminal/style.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <sstream>

#include "common/text/utf8.h"

namespace hbbtv::ctl {

namespace {

constexpr size_t kWidest = 100;  // longer lines are hard to read
constexpr size_t kNarrowest = 40;

bool Colored() {
    const char* refused = std::getenv("NO_COLOR");
    static const bool terminal = isatty(STDOUT_FILENO) == 1;
    return terminal && (refused == nullptr || *refused == '\0');
}

// Returns the width of the terminal, or the maximum.
size_t LineWidth() {
    winsize size{};
    const bool known = ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col != 0;
    return known ? std::clamp<size_t>(size.ws_col, kNarrowest, kWidest) : kWidest;
}

std::string In(const char* code, const std::string& text) {
    return Colored() ? std::string("\033[") + code + "m" + text + "\033[0m" : text;
}

// Returns the number of characters on the screen, without color codes.
size_t Width(const std::string& cell) {
    size_t width = 0;
    for (size_t i = 0; i < cell.size(); ++i) {
        if (cell[i] == '\033')
            i = std::min(cell.find('m', i), cell.size() - 1);
        else if (!IsContinuation(cell[i]))
            ++width;
    }
    return width;
}

// A line that fits keeps its blanks. Otherwise the first line begins with `first`, the others with `next`.
std::string WrappedLine(const std::string& line, const std::string& first, const std::string& next) {
    if (Width(first + line) <= LineWidth()) return first + line + "\n";
    std::string all;
    std::string current = first + line.substr(0, std::min(line.find_first_not_of(' '), line.size()));
    bool empty = true;
    std::istringstream words(line);
    for (std::string word; words >> word; empty = false) {
        if (!empty && Width(current) + 1 + Width(word) > LineWidth()) {
            all += current + "\n";
            current = next;
            empty = true;
        }
        current += (empty ? "" : " ") + word;
    }
    return all + (empty ? "" : current) + "\n";
}

std::string Table(const std::vector<std::vector<std::string>>& rows, const std::string& indent, bool wrap) {
    std::vector<size_t> widths;
    for (const auto& row : rows) {
        widths.resize(std::max(widths.size(), row.size()));
        for (size_t i = 0; i < row.size(); ++i) widths[i] = std::max(widths[i], Width(row[i]));
    }
    std::string text;
    for (const auto& row : rows) {
        std::string line = indent;
        for (size_t i = 0; i + 1 < row.size(); ++i) line += row[i] + std::string(widths[i] - Width(row[i]) + 2, ' ');
        if (wrap && !row.empty()) {
            line = WrappedLine(row.back(), line, std::string(Width(line), ' '));
            line.pop_back();
        } else if (!row.empty()) {
            line += row.back();
        }
        line.erase(line.find_last_not_of(' ') + 1);
        text += line + "\n";
    }
    return text;
}

// Joins the lines of each paragraph. An indented line, or one that begins with @, stays separate.
std::string WithoutLineBreaks(const std::string& text) {
    std::string all = text;
    for (size_t at = 0; (at = all.find('\n', at)) != std::string::npos; ++at) {
        const char next = at + 1 < all.size() ? all[at + 1] : '\n';
        const bool between = at == 0 || all[at - 1] == '\n' || next == '\n';
        if (!between && next != ' ' && next != '@') all[at] = ' ';
    }
    return all;
}

}  // namespace

std::string Bold(const std::string& text) {
    return In("1", text);
}

std::string Dim(const std::string& text) {
    return In("2", text);
}

std::string Red(const std::string& text) {
    return In("31", text);
}

std::string Yellow(const std::string& text) {
    return In("33", text);
}

std::string Green(const std::string& text) {
    return In("32", text);
}

std::string Columns(const std::vector<std::vector<std::string>>& rows, const std::string& indent) {
    return Table(rows, indent, false);
}

std::string WrappedColumns(const std::vector<std::vector<std::string>>& rows, const std::string& indent) {
    return Table(rows, indent, true);
}

std::string Wrapped(const std::string& text, const std::string& indent, const std::string& hanging) {
    std::istringstream lines(WithoutLineBreaks(text));
    std::string all;
    for (std::string line; std::getline(lines, line);) {
        if (line.empty()) {
            all += "\n";
            continue;
        }
        std::string own = line.substr(0, std::min(line.find_first_not_of(' '), line.size()));
        if (line.find('@') == own.size()) own += "    ";
        all += WrappedLine(line, indent, hanging.empty() ? indent + own : hanging);
    }
    return all;
}

}  // namespace hbbtv::ctl
