// What the television remembers when it is switched off: one JSON document per name, in a directory of its own. A
// document is replaced as a whole or not at all, and one that makes no sense is set aside, never written over.
#pragma once

#include <json/value.h>

#include <functional>
#include <memory>
#include <string>

#include "common/local_socket.h"

namespace hbbtv::sim {

// Members of a document that is loaded; Refused is thrown when there is none of the type.
std::string TextIn(const Json::Value& object, const char* member);
const Json::Value& ListIn(const Json::Value& object, const char* member);

class StateStore {
  public:
    // The directory is made when it is missing, and is this store's alone for as long as the store lives. Empty: there
    // is none, nothing is read and what is saved is forgotten. Throws Fatal.
    explicit StateStore(const std::string& directory);

    // Calls `take` with the document of that name, if there is one. `take` throws any exception to say that it makes no
    // sense. Such a document, and one that is no JSON, is reported and set aside under another name; what follows is as
    // if it had never been there. Throws Fatal when the document can be neither read nor set aside.
    void Load(const std::string& name, const std::function<void(const Json::Value&)>& take) const;

    // On disk when it returns. Throws Refused; the earlier document is then still there.
    void Save(const std::string& name, const Json::Value& document) const;

  private:
    std::string Path(const std::string& file) const { return mDirectory + "/" + file; }
    bool Read(const std::string& file, std::string& text) const;
    void SetAside(const std::string& file, const std::string& reason) const;
    std::string About(const std::string& file, const std::string& what) const;
    [[noreturn]] void Fail(const std::string& file, const std::string& what) const;

    std::string mDirectory;
    std::unique_ptr<Descriptor> mOpen;  // the directory, locked; null without one
};

}  // namespace hbbtv::sim
