#include "files.h"

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <map>

#include "common/text/quote.h"

namespace hbbtv::browser {

namespace fs = std::filesystem;

const char* const kFilesOrigin = "http://files.localhost/";

namespace {

constexpr uintmax_t kAtOnce = 8 << 20;  // of a file that is requested in parts, such as a video

const Response kNotFound{404, "text/plain", "no such file", ""};

const std::map<std::string, const char*>& Types() {
    static const std::map<std::string, const char*> types{{".html", "text/html"},
                                                          {".htm", "text/html"},
                                                          {".xhtml", "application/xhtml+xml"},
                                                          {".js", "text/javascript"},
                                                          {".mjs", "text/javascript"},
                                                          {".css", "text/css"},
                                                          {".json", "application/json"},
                                                          {".xml", "application/xml"},
                                                          {".aitx", "application/vnd.dvb.ait+xml"},
                                                          {".png", "image/png"},
                                                          {".jpg", "image/jpeg"},
                                                          {".jpeg", "image/jpeg"},
                                                          {".gif", "image/gif"},
                                                          {".svg", "image/svg+xml"},
                                                          {".webp", "image/webp"},
                                                          {".ico", "image/x-icon"},
                                                          {".woff", "font/woff"},
                                                          {".woff2", "font/woff2"},
                                                          {".ttf", "font/ttf"},
                                                          {".txt", "text/plain"},
                                                          {".vtt", "text/vtt"},
                                                          {".mp4", "video/mp4"},
                                                          {".webm", "video/webm"},
                                                          {".ts", "video/mp2t"},
                                                          {".mp3", "audio/mpeg"},
                                                          {".m4a", "audio/mp4"},
                                                          {".aac", "audio/aac"},
                                                          {".mpd", "application/dash+xml"}};
    return types;
}

// Pages of HbbTV are XHTML, whatever their names.
bool IsXhtml(const std::string& document) {
    const std::string head = document.substr(0, 1024);
    return head.find("<?xml") != std::string::npos || head.find("DTD XHTML") != std::string::npos ||
           head.find("//HbbTV//") != std::string::npos;
}

std::string TypeOf(const std::string& name, const std::string& document) {
    const auto found = Types().find(fs::path(name).extension().string());
    const std::string type = found == Types().end() ? "application/octet-stream" : found->second;
    return type == "text/html" && IsXhtml(document) ? "application/xhtml+xml" : type;
}

std::string Read(const fs::path& file, uintmax_t begin, uintmax_t size) {
    std::ifstream stream(file, std::ios::binary);
    stream.seekg(static_cast<std::streamoff>(begin));
    std::string bytes(size, '\0');
    stream.read(bytes.data(), static_cast<std::streamsize>(size));
    bytes.resize(static_cast<size_t>(stream.gcount()));
    return bytes;
}

bool IsBelow(const fs::path& file, const fs::path& directory) {
    const fs::path relative = file.lexically_relative(directory);
    return !relative.empty() && *relative.begin() != "..";
}

}  // namespace

std::optional<Response> Files::Answer(const std::string& url, const std::string& range) const {
    for (const auto& [prefix, directory] : mServed) {
        if (url.rfind(prefix, 0) == 0)
            return FileResponse(directory, PathOf("x://x/" + url.substr(prefix.size())), range);
    }
    return std::nullopt;
}

std::vector<std::string> Files::Prefixes() const {
    std::vector<std::string> prefixes;
    for (const auto& served : mServed) prefixes.push_back(served.first);
    return prefixes;
}

Response BytesResponse(const std::string& file, const std::string& name, const std::string& range) {
    std::error_code error;
    const uintmax_t size = fs::file_size(file, error);
    if (error) return kNotFound;
    const std::string unit = "bytes=";
    if (range.rfind(unit, 0) != 0) {
        const std::string bytes = Read(file, 0, size);
        return {200, TypeOf(name, bytes), bytes, ""};
    }
    char* end = nullptr;
    const uintmax_t begin = std::strtoull(range.c_str() + unit.size(), &end, 10);
    if (begin >= size) return {416, "text/plain", "", "bytes */" + std::to_string(size)};
    const uintmax_t wanted = *end == '-' && end[1] != '\0' ? std::strtoull(end + 1, nullptr, 10) : size - 1;
    const uintmax_t last = std::min({wanted, size - 1, begin + kAtOnce - 1});
    const std::string bytes = Read(file, begin, last - begin + 1);
    return {206, TypeOf(name, bytes), bytes,
            "bytes " + std::to_string(begin) + "-" + std::to_string(last) + "/" + std::to_string(size)};
}

Response FileResponse(const std::string& directory, const std::string& path, const std::string& range) {
    std::error_code error;
    const fs::path root = fs::canonical(directory, error);
    if (error) return kNotFound;
    fs::path file = fs::weakly_canonical(root / fs::path(path).relative_path(), error);
    if (error || !(file == root || IsBelow(file, root))) return kNotFound;
    if (fs::is_directory(file, error)) {
        const fs::path page = file / "index.html";
        file = fs::exists(page, error) ? page : file / "index.xhtml";
    }
    if (!fs::is_regular_file(file, error)) return kNotFound;
    return BytesResponse(file.string(), file.filename().string(), range);
}

std::string Escaped(const std::string& name) {
    std::string text;
    for (const char c : name) {
        char escape[4];
        std::snprintf(escape, sizeof(escape), "%%%02X", static_cast<unsigned char>(c));
        const bool plain = std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '.' || c == '-' || c == '_';
        text += plain ? std::string(1, c) : escape;
    }
    return text;
}

std::string PictureFile(const std::string& directory, const std::string& channel) {
    std::error_code error;
    for (const auto& entry : fs::directory_iterator(directory, error)) {
        if (entry.path().stem() == channel || entry.path().filename() == channel) return entry.path().string();
    }
    return "";
}

std::string ReplaceFile(const std::string& name, const std::string& bytes) {
    const std::string next = name + ".new";
    std::ofstream file(next, std::ios::binary);
    file << bytes;
    file.close();
    if (file && std::rename(next.c_str(), name.c_str()) == 0) return "";
    const std::string problem = "cannot write " + Quoted(name) + ": " + std::strerror(errno);
    std::remove(next.c_str());
    return problem;
}

}  // namespace hbbtv::browser
