#include "simulator.h"

#include <sstream>

#include "common/nearest_name.h"
#include "core/error.h"
#include "core/journal.h"
#include "family/members.h"
#include "server/frame_connection.h"

namespace hbbtv::sim {

const char* const kControlSocket = "hbbtv_sim_control";

namespace {

std::string ServiceCount(const LineUp& lineUp) {
    size_t listed = 0;
    for (const auto& service : lineUp.services) listed += service->listed ? 1 : 0;
    std::string text = std::to_string(listed) + " channels";
    const size_t hidden = lineUp.services.size() - listed;
    return hidden == 0 ? text : text + " and " + std::to_string(hidden) + " services outside the channel list";
}

}  // namespace

Simulator::Simulator(EventLoop& loop, const Journal& journal, LineUp lineUp, const Settings& settings,
                     std::string directory, std::unique_ptr<Guide> guide)
    : mLoop(loop),
      mJournal(journal),
      mSettings(settings),
      mDirectory(std::move(directory)),
      mState(settings.stateDirectory),
      mTv(std::move(lineUp), settings.seed, mState, std::move(guide)) {
    const FamilySetup setup{mLoop, mTv, mSettings,
                            [this](const FamilyAddress& address, const EventTable& events) -> EventSink& {
                                return MakeSink(address, events);
                            },
                            mDirectory};
    for (auto& family : MakeFamilies(setup)) Serve(std::move(family));
    AddCommands();
    mControl = std::make_unique<ControlServer>(mLoop, mDirectory + "/" + kControlSocket,
                                               [this](const std::string& line) { return Execute(line); });
}

Simulator::~Simulator() = default;

EventSink& Simulator::MakeSink(const FamilyAddress& address, const EventTable& events) {
    mSenders.push_back(std::make_unique<EventSender>(mLoop, mJournal, mDirectory + "/" + address.eventSocket,
                                                     address.eventPort, events));
    return *mSenders.back();
}

void Simulator::Serve(std::unique_ptr<Family> family) {
    const FamilyAddress address = family->Address();
    auto& dispatcher = mFamilies[address.name];
    dispatcher = std::make_unique<Dispatcher>(std::move(family), mJournal);
    mListeners.push_back(std::make_unique<LocalListener>(
        mLoop, mDirectory + "/" + address.requestSocket,
        [this, name = address.name, handler = dispatcher.get()](int fd) {
            ServeFrames(mLoop, fd, name, [handler](const Frame& frame) { return handler->Handle(frame); });
        }));
}

std::string Simulator::Summary() const {
    std::ostringstream text;
    text << "line-up: " << ServiceCount(mTv.lineUp) << ", on: " << OneLine(mTv.tuner.On()->service->name) << "\n";
    for (const auto& entry : mFamilies) {
        const FamilyAddress& address = entry.second->Served().Address();
        text << "serving: " << mDirectory << "/" << address.requestSocket << " (" << address.name << ")\n";
    }
    if (!mSettings.stateDirectory.empty()) text << "state: " << mSettings.stateDirectory << "\n";
    text << "control: " << mControl->Path() << "\n";
    return text.str();
}

void Simulator::AddCommands() {
    mCommands["stop-answering"] = {"stop-answering FAMILY", "ignore the requests of a family, as a platform that hangs",
                                   [this](const Words& words) { return SetAnswering(words, false); }};
    mCommands["answer"] = {"answer FAMILY", "answer the requests of a family again",
                           [this](const Words& words) { return SetAnswering(words, true); }};
    mCommands["help"] = {"help [COMMAND]", "describe a command, or list all",
                         [this](const Words& words) { return Help(words); }};
}

std::string Simulator::Execute(const std::string& line) {
    std::istringstream input(line);
    std::string name;
    Words words;
    input >> name;
    for (std::string word; input >> word;) words.push_back(word);
    try {
        const std::string answer = OneLine(Run(Find(name), words));
        return answer.empty() ? "ok" : "ok " + answer;
    } catch (const std::exception& e) {
        return "error: " + OneLine(e.what());
    }
}

std::string Simulator::Run(const Command& command, const Words& words) const {
    try {
        return command.run(words);
    } catch (const Refused& e) {
        if (*e.what() != '\0') throw;
        throw Refused("usage: " + command.usage);
    }
}

const Command& Simulator::Find(const std::string& name) const {
    std::set<std::string> known;
    const Command* found = nullptr;
    const auto look = [&](const std::map<std::string, Command>& commands) {
        for (const auto& command : commands) {
            known.insert(command.first);
            if (command.first == name) found = &command.second;
        }
    };
    look(mCommands);
    for (const auto& entry : mFamilies) look(entry.second->Served().Commands());
    if (found == nullptr) throw Refused("there is no command \"" + Excerpt(name) + "\"" + DidYouMean(name, known));
    return *found;
}

std::string Simulator::SetAnswering(const Words& words, bool answering) {
    const std::string& name = Word(words);
    const auto found = mFamilies.find(name);
    if (found != mFamilies.end()) {
        found->second->StopAnswering(!answering);
        return "";
    }
    std::set<std::string> known;
    for (const auto& entry : mFamilies) known.insert(entry.first);
    throw Refused("there is no family \"" + Excerpt(name) + "\"" + DidYouMean(name, known));
}

std::string Simulator::Help(const Words& words) const {
    if (!words.empty()) {
        const Command& command = Find(Word(words));
        return command.usage + ": " + command.purpose;
    }
    std::string text;
    const auto add = [&](const std::map<std::string, Command>& commands) {
        for (const auto& command : commands) text += (text.empty() ? "" : "; ") + command.second.usage;
    };
    add(mCommands);
    for (const auto& entry : mFamilies) add(entry.second->Served().Commands());
    return text;
}

}  // namespace hbbtv::sim
