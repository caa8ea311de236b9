// Files of a directory under an origin of ours, http://files.localhost/, for pages that no server has.
#pragma once

#include <string>

#include "chromium/requests.h"

namespace hbbtv::browser {

// The origin, with a slash.
extern const char* const kFilesOrigin;

// Returns a file below the directory by the path of a URL. The file of a directory is index.html or index.xhtml.
Response FileResponse(const std::string& directory, const std::string& path, const std::string& range);

// Returns the bytes of a file as a response; `name` determines its type. `range` is a header of the request, or empty.
Response BytesResponse(const std::string& file, const std::string& name, const std::string& range);

}  // namespace hbbtv::browser
