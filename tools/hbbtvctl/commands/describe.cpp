// hbbtvctl describe: prints the documentation of a name, from the .hal files and protocol/.
#include <cstdio>

#include "cli/options.h"
#include "commands/commands.h"
#include "common/failure.h"
#include "common/nearest_name.h"
#include "common/text/json.h"
#include "terminal/style.h"
#include "wire/endpoint.h"
#include "wire/message.h"

namespace hbbtv::ctl {

namespace {

struct DescribeOptions {
    std::string name;
    bool json = false;
};

std::string List(const std::vector<Parameter>& parameters) {
    std::string text;
    for (const Parameter& parameter : parameters) {
        text += (text.empty() ? "" : ", ") + parameter.type->name + " " + parameter.name;
    }
    return "(" + text + ")";
}

// Formats on one line, or with the results on a second one.
std::string Signature(const std::string& name, const Method& method, const std::string& indent) {
    const std::string hanging = indent + "        ";
    const std::string call = name + List(method.arguments);
    const std::string results = method.results.empty() ? "" : "-> " + List(method.results);
    const std::string all = Wrapped(results.empty() ? call : call + " " + results, indent, hanging);
    if (results.empty() || all.find('\n') + 1 == all.size()) return all;
    return Wrapped(call, indent, hanging) + Wrapped(results, hanging);
}

std::string FirstSentence(const std::string& doc) {
    const std::string line = doc.substr(0, doc.find("\n\n"));
    std::string text = line.substr(0, line.find(". "));
    for (char& c : text) c = c == '\n' ? ' ' : c;
    return text.empty() || text.back() == '.' ? text : text + ".";
}

std::string MemberText(const Json::Value& member) {
    std::string text = member["key"].asString() + " (" + member["type"].asString() + ")";
    if (member.isMember("repeat")) text += ", %d from 0 to \"" + member["repeat"].asString() + "\" - 1";
    if (member.isMember("doc")) text += ": " + member["doc"].asString();
    return text;
}

std::string MembersText(const Json::Value& members) {
    std::string text;
    for (const Json::Value& member : members) text += Wrapped(MemberText(member), "    ", "        ");
    return text.empty() ? "    none\n" : text;
}

void PrintTypes(const std::vector<Parameter>& parameters);

void PrintType(const Type& type) {
    std::printf("%s\n%s", Bold(type.name).c_str(), Wrapped(type.doc, "    ").c_str());
    std::vector<std::vector<std::string>> rows;
    for (const Enumerator& e : type.enumerators)
        rows.push_back({std::to_string(e.value), e.name, FirstSentence(e.doc)});
    for (const Parameter& field : type.fields) rows.push_back({field.type->name, field.name});
    std::printf("%s", WrappedColumns(rows, "    ").c_str());
    PrintTypes(type.fields);
}

const Type& Innermost(const Type& type) {
    return type.kind == Type::Kind::Vector ? Innermost(*type.element) : type;
}

void PrintTypes(const std::vector<Parameter>& parameters) {
    for (const Parameter& parameter : parameters) {
        const Type& type = Innermost(*parameter.type);
        if (type.kind != Type::Kind::Enum && type.kind != Type::Kind::Struct) continue;
        std::printf("\n");
        PrintType(type);
    }
}

void PrintOperation(const WireFamily& family, const Json::Value& operation) {
    const Endpoint endpoint = RequestsOf(family);
    const Json::Value& envelope = family.protocol["envelope"];
    std::string codes;
    if (envelope.isMember("type"))
        codes = envelope["type"]["key"].asString() + " " + envelope["type"]["value"].asString() + ", ";
    codes += envelope["code"]["key"].asString() + " " + operation["code"].asString();
    std::printf("\n%s %s, %s, to %s, port %d\n", Bold("Wire").c_str(), operation["form"].asCString(), codes.c_str(),
                endpoint.socket.c_str(), endpoint.port);
    if (operation.isMember("note")) std::printf("%s", Wrapped(operation["note"].asString(), "    ").c_str());
    std::printf("  request\n%s", MembersText(operation["request"]).c_str());
    if (operation["form"] != "one-way") {
        std::printf("  reply\n    ret (int): 0 for success\n%s",
                    operation["reply"].empty() ? "" : MembersText(operation["reply"]).c_str());
    }
}

int DescribeMethod(const Interface& interface, const Method& method) {
    std::printf("%s%s", Signature(Bold(interface.name + "." + method.name), method, "").c_str(),
                Wrapped(method.doc, "    ").c_str());
    const WireFamily* family = Package::Get().FamilyOf(interface);
    if (const Json::Value* operation = family == nullptr ? nullptr : family->OperationOf(method.name)) {
        PrintOperation(*family, *operation);
    }
    PrintTypes(method.arguments);
    PrintTypes(method.results);
    return kDone;
}

int DescribeInterface(const Interface& interface) {
    std::printf("%s%s\n%s\n", Bold(Package::Get().name + "::" + interface.name).c_str(),
                interface.callback ? ", implemented by clients" : "", Wrapped(interface.doc, "    ").c_str());
    for (const Method& method : interface.methods) {
        std::printf("%s", Signature(method.name, method, "  ").c_str());
        if (!method.doc.empty()) std::printf("%s", Wrapped(Dim(FirstSentence(method.doc)), "      ").c_str());
    }
    return kDone;
}

int DescribeOperation(const WireFamily& family, const Json::Value& operation) {
    std::printf("%s\n%s", Bold(family.name + "." + operation["name"].asString()).c_str(),
                Wrapped(operation["doc"].asString(), "    ").c_str());
    PrintOperation(family, operation);
    return kDone;
}

void PrintEvents(const WireFamily& family) {
    std::vector<std::vector<std::string>> rows;
    for (const Json::Value& event : family.protocol["events"]) {
        std::string members;
        for (const Json::Value& member : event["members"])
            members += (members.empty() ? "" : ", ") + member["key"].asString();
        std::string forms;
        for (const Json::Value& form : event["forms"]) forms += (forms.empty() ? "" : ", ") + form.asString();
        rows.push_back({event["object"].asString(), event["code"].asString(), event["name"].asString(), forms,
                        event["callback"].asString(), members});
    }
    std::printf("\nEvents\n%s", WrappedColumns(rows, "  ").c_str());
}

int DescribeFamily(const WireFamily& family) {
    const Endpoint requests = RequestsOf(family);
    std::printf("%s (%s)\n%s\n", Bold(family.name).c_str(), family.protocol["title"].asCString(),
                Wrapped(family.protocol["doc"].asString(), "    ").c_str());
    std::printf("  requests  key %d, port %d, %s, served by the platform\n", requests.key, requests.port,
                requests.socket.c_str());
    if (family.protocol["endpoints"].isMember("events")) {
        const Endpoint events = EventsOf(family);
        std::printf("  events    key %d, port %d, %s, served by the library\n", events.key, events.port,
                    events.socket.c_str());
    }
    std::vector<std::vector<std::string>> rows;
    for (const Json::Value& operation : family.protocol["operations"]) {
        rows.push_back({operation["code"].asString(), operation["name"].asString(), operation["form"].asString(),
                        Dim(FirstSentence(operation["doc"].asString()))});
    }
    std::printf("\nOperations\n%s", WrappedColumns(rows, "  ").c_str());
    if (!family.protocol["events"].empty()) PrintEvents(family);
    return kDone;
}

// Returns the entry of a list of the package's description.
const Json::Value& Entry(const Json::Value& list, const std::string& name) {
    for (const Json::Value& entry : list) {
        if (entry["name"] == name) return entry;
    }
    return Json::Value::nullSingleton();
}

Json::Value OperationDocument(const WireFamily& family, const Json::Value& operation) {
    Json::Value document(Json::objectValue);
    document["family"] = family.name;
    document["envelope"] = family.protocol["envelope"];
    document["endpoint"] = family.protocol["endpoints"]["requests"];
    document["operation"] = operation;
    return document;
}

Json::Value MethodDocument(const Interface& interface, const Method& method) {
    const Json::Value& entry = Entry(Package::Description()["interfaces"], interface.name);
    Json::Value document(Json::objectValue);
    document["interface"] = interface.name;
    document["method"] = Entry(entry["methods"], method.name);
    const WireFamily* family = Package::Get().FamilyOf(interface);
    if (const Json::Value* operation = family == nullptr ? nullptr : family->OperationOf(method.name)) {
        document["wire"] = OperationDocument(*family, *operation);
    }
    return document;
}

int Print(const Json::Value& document) {
    std::printf("%s\n", WriteJson(document).c_str());
    return kDone;
}

std::set<std::string> AllNames(const Package& package) {
    std::set<std::string> names;
    for (const Interface& interface : package.interfaces) names.insert(interface.name);
    for (const WireFamily& family : WireFamilies()) names.insert(family.name);
    for (const auto& type : package.types) names.insert(type->name);
    return names;
}

// The part before a dot is an interface or a family; a name without a dot can also be a type. Exact names take
// precedence, because the interface IChannel and the family channel differ.
int Run(const DescribeOptions& options) {
    const std::string& name = options.name;
    const Package& package = Package::Get();
    const Json::Value& description = Package::Description();
    const size_t dot = name.find('.');
    const std::string owner = name.substr(0, dot);
    const std::string member = dot == std::string::npos ? "" : name.substr(dot + 1);
    for (const auto& type : package.types) {
        if (type->name != name) continue;
        if (options.json) return Print(Entry(description["types"], name));
        PrintType(*type);
        return kDone;
    }
    for (const WireFamily& family : WireFamilies()) {
        if (family.name != owner) continue;
        if (member.empty()) return options.json ? Print(family.protocol) : DescribeFamily(family);
        if (const Json::Value* operation = family.Operation(member)) {
            return options.json ? Print(OperationDocument(family, *operation)) : DescribeOperation(family, *operation);
        }
        throw Failure(kUsage, "family " + family.name + " has no operation \"" + member + "\"" +
                                  DidYouMean(member, family.OperationNames(), kShortList) +
                                  " (see `hbbtvctl describe " + family.name + "`)");
    }
    if (!member.empty()) {
        const auto [interface, method] = package.FindMethod(name);
        return options.json ? Print(MethodDocument(*interface, *method)) : DescribeMethod(*interface, *method);
    }
    try {
        const Interface& interface = package.FindInterface(name);
        return options.json ? Print(Entry(description["interfaces"], interface.name)) : DescribeInterface(interface);
    } catch (const Failure&) {
        throw Failure(kUsage, "unknown interface, family or type \"" + name + "\"" +
                                  DidYouMean(name, AllNames(package), kShortList) + " (see `hbbtvctl list`)");
    }
}

}  // namespace

void AddDescribe(CLI::App& app, Invocation& invocation) {
    auto options = std::make_shared<DescribeOptions>();
    CLI::App* command =
        app.add_subcommand("describe", "Explain an interface, a method, a type or a family of the wire");
    command
        ->add_option("NAME", options->name,
                     "For example IChannel, IChannel.GetOnid, TolmRect, channel, channel.GetOnid")
        ->type_name("NAME")
        ->required();
    AddJson(*command, options->json);
    command->footer(
        "Examples:\n"
        "  hbbtvctl describe IChannel\n"
        "  hbbtvctl describe IVideoBroadcast.SetChannel\n"
        "  hbbtvctl describe TolmVBPlayState\n"
        "  hbbtvctl describe channel_config\n"
        "  hbbtvctl describe channel.GetOnid --json");
    command->callback([options, &invocation] { invocation.run = [options] { return Run(*options); }; });
}

}  // namespace hbbtv::ctl
