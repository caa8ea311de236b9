// What the documents of pages have created at the platform. A document that goes cannot release anything itself: calls
// are refused while it is left.
#pragma once

#include <json/value.h>

#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace hbbtv::browser {

// A call that releases an object: method and arguments.
using Release = std::pair<std::string, Json::Value>;

class Holdings {
  public:
    // Notes what a call of a document has created or released. `results` are those of a call that succeeded.
    void Called(const std::string& document, const std::string& method, const Json::Value& arguments,
                const Json::Value& results);

    // Removes a document. Returns the calls that release what no other document holds, in their order.
    std::vector<Release> Gone(const std::string& document);

    // Returns the video/broadcast objects and search managers of all documents.
    std::set<int64_t> Held(const std::string& releaser) const;

    // Returns the documents that hold anything.
    std::vector<std::string> Documents() const;

    // Forgets all: the platform, or the service, has ended.
    void Clear() { mHeld.clear(); }

  private:
    using Object = std::pair<std::string, int64_t>;  // the method that releases it, and its handle

    std::map<std::string, std::vector<Object>> mHeld;  // by document, in the order of creation
};

}  // namespace hbbtv::browser
