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

// A call that releases an object, or ends what a call has begun: method and arguments.
using Release = std::pair<std::string, Json::Value>;

class Holdings {
  public:
    // Notes what a call of a document has created, begun or released. `results` are those of a call that succeeded.
    void Called(const std::string& document, const std::string& method, const Json::Value& arguments,
                const Json::Value& results);

    // Notes what an event of a video/broadcast object, such as "IVideoBroadcast.onParentalRating", has given to the
    // documents that have such objects, or has ended. Returns the calls that release what no document was given.
    std::vector<Release> Received(const std::string& event, const Json::Value& arguments);

    // Removes a document. Returns the calls that release what no other document holds, in their order.
    std::vector<Release> Gone(const std::string& document);

    // Returns the documents that hold anything.
    std::vector<std::string> Documents() const;

    // Forgets all: the platform, or the service, has ended.
    void Clear();

  private:
    struct Holding {
        Release release;
        size_t order;  // of creation
    };
    using Held = std::map<std::string, Holding>;  // by the text of the release

    void Note(Held& held, const std::string& source, const Json::Value& values);
    void Hold(Held& held, const std::string& method, const Json::Value& arguments);
    static void Forget(Held& held, const Json::Value& streamEvent);
    static bool HasVideo(const Held& held);
    bool IsHeld(const std::string& text) const;
    bool IsShared(const Release& release) const;

    std::map<std::string, Held> mHeld;  // by document
    size_t mLast = 0;
    std::set<int64_t> mSharedChannels;  // that the platform has returned for a channel of its own
};

}  // namespace hbbtv::browser
