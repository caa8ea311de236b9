#include "television/applications/applications.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>

#include "core/error.h"
#include "television/device/remote_control.h"

namespace hbbtv::sim {

namespace {

constexpr size_t kMost = 64;
constexpr int kHighestNumber = 0xffff;
constexpr int kFirstNumber = 0x8000;

const char* const kCarousel = "dvb://";

// Parses a number of 31 bits in hexadecimal.
std::optional<int> ReadHexadecimal(const std::string& text) {
    const bool digits =
        !text.empty() && text.size() <= 8 && text.find_first_not_of("0123456789abcdefABCDEF") == std::string::npos;
    const unsigned long value = digits ? std::strtoul(text.c_str(), nullptr, 16) : ~0ul;
    if (value > 0x7fffffff) return std::nullopt;
    return static_cast<int>(value);
}

bool StartsWith(const std::string& text, const std::string& start) {
    return text.rfind(start, 0) == 0;
}

bool EndsWith(const std::string& text, const std::string& end) {
    return text.size() >= end.size() && text.compare(text.size() - end.size(), end.size(), end) == 0;
}

}  // namespace

std::string IdText(const ApplicationId& id) {
    char text[24];
    std::snprintf(text, sizeof(text), "%x.%x", static_cast<unsigned>(id.organisation),
                  static_cast<unsigned>(id.application));
    return text;
}

std::optional<ApplicationId> ReadApplicationId(const std::string& text) {
    const size_t dot = text.find('.');
    if (dot == std::string::npos) return std::nullopt;
    const auto organisation = ReadHexadecimal(text.substr(0, dot));
    const auto application = ReadHexadecimal(text.substr(dot + 1));
    if (!organisation || !application) return std::nullopt;
    return ApplicationId{*application, *organisation};
}

bool IsXmlSignalling(const std::string& url) {
    return EndsWith(url, ".aitx");
}

ApplicationType Application::Type() const {
    if (operatorApplication) return ApplicationType::Operator;
    return service ? ApplicationType::BroadcastRelated : ApplicationType::BroadcastIndependent;
}

void Application::AskForKeys(int sets, const std::vector<int>& others) {
    keySets = sets & AllKeySets();
    otherKeys.clear();
    if ((keySets & kOtherKeys) == 0) return;
    const std::vector<int>& known = AllOtherKeys();
    for (const int key : others) {
        const bool there = std::find(known.begin(), known.end(), key) != known.end();
        const bool again = std::find(otherKeys.begin(), otherKeys.end(), key) != otherKeys.end();
        if (there && !again) otherKeys.push_back(key);
    }
}

bool Application::Takes(const RemoteKey& key) const {
    if ((keySets & key.set) == 0) return false;
    return key.set != kOtherKeys || std::find(otherKeys.begin(), otherKeys.end(), key.code) != otherKeys.end();
}

ApplicationPointer Applications::Find(const ApplicationId& id) const {
    for (const auto& application : mRunning) {
        if (application->id == id) return application;
    }
    return nullptr;
}

ApplicationPointer Applications::FindNumber(int application) const {
    const auto found = std::find_if(mRunning.rbegin(), mRunning.rend(),
                                    [&](const auto& running) { return running->id.application == application; });
    return found == mRunning.rend() ? nullptr : *found;
}

ApplicationPointer Applications::Current() const {
    const auto found =
        std::find_if(mRunning.rbegin(), mRunning.rend(), [](const auto& running) { return running->shown; });
    if (found != mRunning.rend()) return *found;
    return mRunning.empty() ? nullptr : mRunning.back();
}

std::vector<ApplicationPointer> Applications::ChildrenOf(const ApplicationId& id) const {
    std::vector<ApplicationPointer> children;
    for (const auto& application : mRunning) {
        if (application->parent == id) children.push_back(application);
    }
    return children;
}

bool Applications::AnyShown() const {
    return std::any_of(mRunning.begin(), mRunning.end(), [](const auto& running) { return running->shown; });
}

int Applications::NewNumber(int organisation) {
    int number = mNextNumber;
    do {
        number = mNextNumber;
        mNextNumber = number == kHighestNumber ? kFirstNumber : number + 1;
    } while (Find({number, organisation}));
    return number;
}

ApplicationPointer Applications::Start(Application application) {
    if (Find(application.id)) throw Refused("the application " + IdText(application.id) + " is already running");
    if (mRunning.size() >= kMost) throw Refused("too many applications are running");
    mRunning.push_back(std::make_shared<Application>(std::move(application)));
    return mRunning.back();
}

void Applications::Admit(const ApplicationPointer& application) {
    application->admitted = true;
    const bool known = !StartsWith(application->url, kCarousel) && !IsXmlSignalling(application->url);
    if (known) application->document = application->url;
    ready.Notify(application);
}

void Applications::FoundDocument(const ApplicationPointer& application, const std::string& url) {
    application->document = url;
    ready.Notify(application);
}

bool Applications::FileArrived(const std::string& url, const std::string& path) {
    std::vector<ApplicationPointer> waiting;
    for (const auto& application : mRunning) {
        if (application->admitted && application->document.empty() && application->url == url) {
            waiting.push_back(application);
        }
    }
    for (const auto& application : waiting) FoundDocument(application, "file://" + path);
    return !waiting.empty();
}

void Applications::ToTop(const ApplicationPointer& application) {
    const auto found = std::find(mRunning.begin(), mRunning.end(), application);
    std::rotate(found, found + 1, mRunning.end());
}

void Applications::SetShown(const ApplicationPointer& application, bool show) {
    if (show) ToTop(application);
    if (application->shown == show) return;
    application->shown = show;
    shown.Notify(application);
}

void Applications::Bind(const ApplicationPointer& application, std::shared_ptr<const Service> service) {
    if (application->service == service) return;
    application->service = std::move(service);
    bound.Notify(application);
}

void Applications::SayLoaded(const ApplicationPointer& application) {
    loaded.Notify(application);
}

void Applications::End(const ApplicationPointer& application) {
    if (!application->running) return;
    application->running = false;
    mRunning.erase(std::find(mRunning.begin(), mRunning.end(), application));
    for (const auto& child : ChildrenOf(application->id)) End(child);
    ended.Notify(application);
}

void Applications::LeaveFor(const std::shared_ptr<const Service>& service) {
    const std::vector<ApplicationPointer> before = mRunning;
    for (const auto& application : before) {
        if (application->service && application->service != service) End(application);
    }
}

}  // namespace hbbtv::sim
