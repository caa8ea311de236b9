// The HIDL package as data: the content of the .hal files, compiled into the program.
#pragma once

#include <json/value.h>

#include <memory>
#include <string>
#include <vector>

#include "wire/protocol.h"
#include "wire/type.h"

namespace hbbtv {

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

class Package {
  public:
    // Returns the package that was compiled in.
    static const Package& Get();

    // Returns the same as JSON: "package", "interfaces" with their methods, and "types", as generate.py writes them.
    static const Json::Value& Description();

    std::string name;  // "vantorel.hardware.hbbtv@1.0"
    std::vector<Interface> interfaces;
    std::vector<std::shared_ptr<const Type>> types;  // structs and enumerations

    // The following two throw Failure(kUsage) for an unknown name. The "I" of an interface can be omitted; case and
    // underscores are ignored.
    const Interface& FindInterface(const std::string& name) const;

    // "IChannel.GetOnid".
    struct QualifiedMethod {
        const Interface* interface;
        const Method* method;

        std::string Name() const { return interface->name + "." + method->name; }
    };
    QualifiedMethod FindMethod(const std::string& name) const;

    // Return the family of an interface, and the interface of a family, or null.
    const WireFamily* FamilyOf(const Interface& interface) const;
    const Interface* InterfaceOf(const WireFamily& family) const;

  private:
    explicit Package(const Json::Value& description);
};

extern const char* const kDescription;

}  // namespace hbbtv
