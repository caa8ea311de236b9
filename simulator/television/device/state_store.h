// The television's saved state: one JSON document per name, in its own directory. Documents are replaced atomically; an
// invalid one is renamed, never overwritten.
#pragma once

#include <json/value.h>

#include <functional>
#include <memory>
#include <string>

#include "common/local_socket.h"

namespace hbbtv::sim {

// Members of a loaded document; throw Refused if no member has the type.
std::string TextIn(const Json::Value& object, const char* member);
const Json::Value& ListIn(const Json::Value& object, const char* member);

class StateStore {
  public:
    // Creates the directory if it is missing, and locks it as long as the store exists. If empty, nothing is read and
    // saved documents are discarded. Throws Fatal.
    explicit StateStore(const std::string& directory);

    // Calls `take` with the document of that name, if there is one. `take` throws any exception if the document is
    // invalid. Such a document, and one that is not valid JSON, is reported and renamed, and counts as missing. Throws
    // Fatal if the document can be neither read nor renamed.
    void Load(const std::string& name, const std::function<void(const Json::Value&)>& take) const;

    // The document is on disk when this returns. Throws Refused; the earlier document is then unchanged.
    void Save(const std::string& name, const Json::Value& document) const;

  private:
    std::string Path(const std::string& file) const { return mDirectory + "/" + file; }
    bool Read(const std::string& file, std::string& text) const;
    void SetAside(const std::string& file, const std::string& reason) const;
    std::string About(const std::string& file, const std::string& what) const;
    [[noreturn]] void Fail(const std::string& file, const std::string& what) const;

    std::string mDirectory;
    std::unique_ptr<Descriptor> mOpen;  // the directory, locked; null if there is none
};

}  // namespace hbbtv::sim
