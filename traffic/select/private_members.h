// Which members of messages belong to one television or its viewer: the list that --redact goes by.
#pragma once

#include <string>
#include <vector>

#include "traffic/record/record.h"

namespace hbbtv::traffic {

struct PrivateMember {
    const char* family;
    const char* operation;  // or event
    const char* key;
    bool identifies;  // the television: may also occur within other strings
};

// Returns the list. docs/hbbtvctl.md has it, too.
const std::vector<PrivateMember>& PrivateMembers();

enum class Privacy {
    Public,      // what everybody can know, or what only the television understands, such as a handle
    Unknown,     // protocol/ does not define it, so it may be anything
    Personal,    // of the viewer
    Identifier,  // of the television; also in messages where protocol/ does not define it
};

// Returns what the top-level member of the record's message, or of its reply, is.
Privacy PrivacyOf(const Record& record, bool ofReply, const std::string& key);

}  // namespace hbbtv::traffic
