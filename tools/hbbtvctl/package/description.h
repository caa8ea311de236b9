// The HIDL package and its wire as data: what the .hal files and protocol/ say, put into the program when it is built.
#pragma once

#include <json/value.h>

#include <memory>
#include <string>
#include <vector>

namespace hbbtv::ctl {

struct Type;

struct Parameter {
    std::string name;
    std::shared_ptr<const Type> type;
};

struct Enumerator {
    std::string name;
    int64_t value;
    std::string doc;
};

struct Type {
    enum class Kind { Bool, Integer, Real, Text, Vector, Struct, Enum, Callback };

    std::string name;  // as in the .hal file
    Kind kind = Kind::Text;
    std::string doc;                      // of a struct or an enumeration
    int bits = 0;                         // Integer and Enum
    bool isSigned = true;                 // Integer and Enum
    std::shared_ptr<const Type> element;  // Vector
    std::vector<Parameter> fields;        // Struct
    std::vector<Enumerator> enumerators;  // Enum
};

struct Method {
    std::string name;
    std::string doc;
    std::vector<Parameter> arguments;
    std::vector<Parameter> results;
};

struct Interface {
    std::string name;  // "IChannel"
    std::string doc;
    bool callback = false;  // implemented by clients
    std::vector<Method> methods;

    const Method* Find(const std::string& method) const;
};

// A family of the wire; the rest of its protocol file is in `protocol`.
struct WireFamily {
    std::string name;       // "channel_config"
    std::string interface;  // "IChannelConfig"
    Json::Value protocol;

    // Null when there is none.
    const Json::Value* Operation(const std::string& operation) const;

    std::vector<std::string> OperationNames() const;

    // What the method of the family's interface sends: the operation that names it as its "method", else the one of the
    // same name. Null when there is none.
    const Json::Value* OperationOf(const Method& method) const;
};

class Package {
  public:
    // The one that is built in.
    static const Package& Get();

    std::string name;  // "vantorel.hardware.hbbtv@1.0"
    std::vector<Interface> interfaces;
    std::vector<WireFamily> families;
    std::vector<std::shared_ptr<const Type>> types;  // structs and enumerations

    // These throw Failure(kUsage) with the nearest name that exists. Names of interfaces may lack the "I" in front and
    // be written in any letter case.
    const Interface& FindInterface(const std::string& name) const;
    const WireFamily& FindFamily(const std::string& name) const;

    // "IChannel.GetOnid".
    struct QualifiedMethod {
        const Interface* interface;
        const Method* method;
    };
    QualifiedMethod FindMethod(const std::string& name) const;

    // Null when the interface has no family.
    const WireFamily* FamilyOf(const Interface& interface) const;
    const Interface* InterfaceOf(const WireFamily& family) const;

    std::shared_ptr<const Type> MakeType(const std::string& name) const;

  private:
    explicit Package(const Json::Value& description);
};

extern const char* const kDescription;

// "; did you mean "X"?" or nothing.
std::string DidYouMean(const std::string& name, const std::vector<std::string>& known);

}  // namespace hbbtv::ctl
