// Files of directories under origins that no server has, or that a server is not asked for.
#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "chromium/requests.h"

namespace hbbtv::browser {

// The origin of files that have none, with a slash.
extern const char* const kFilesOrigin;

class Files {
  public:
    // Gives the files of a directory the URLs that begin with `prefix`, which ends with a slash.
    void Serve(const std::string& prefix, const std::string& directory) { mServed.emplace_back(prefix, directory); }

    // Returns the answer to a request; nothing if the URL is not served.
    std::optional<Response> Answer(const std::string& url, const std::string& range) const;

    // Returns the beginnings of the URLs.
    std::vector<std::string> Prefixes() const;

  private:
    std::vector<std::pair<std::string, std::string>> mServed;
};

// Returns a file below the directory by its path in a URL. The file of a directory is index.html or index.xhtml.
Response FileResponse(const std::string& directory, const std::string& path, const std::string& range);

// Returns the bytes of a file as a response; `name` determines its type. `range` is a header of the request, or empty.
Response BytesResponse(const std::string& file, const std::string& name, const std::string& range);

// Returns the name of a file as a part of a URL.
std::string Escaped(const std::string& name);

// Returns the video of a channel: the file in the directory that has its name, with any extension; else "".
std::string PictureFile(const std::string& directory, const std::string& channel);

// Replaces a file; a reader sees the old one or the new one. Returns what failed, or "".
std::string ReplaceFile(const std::string& name, const std::string& bytes);

}  // namespace hbbtv::browser
