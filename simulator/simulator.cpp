// Puts the parts together: see simulator.h.
#include "simulator.h"

#include <algorithm>
#include <sstream>

#include "common/nearest_name.h"
#include "core/frame_connection.h"

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
                            [this](const FamilyAddress& address) -> EventSink& { return SinkOf(address); }, mDirectory};
    for (auto& family : MakeFamilies(setup)) Serve(std::move(family));
    mControl = std::make_unique<ControlServer>(mLoop, mDirectory + "/" + kControlSocket,
                                               [this](const std::string& line) { return Command(line); });
}

Simulator::~Simulator() = default;

EventSink& Simulator::SinkOf(const FamilyAddress& address) {
    mSenders.push_back(
        std::make_unique<EventSender>(mLoop, mJournal, mDirectory + "/" + address.eventSocket, address.port));
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
    text << "line-up: " << ServiceCount(mTv.lineUp) << ", on: " << mTv.tuner.On()->service->name << "\n";
    for (const auto& entry : mFamilies) {
        const FamilyAddress& address = entry.second->Served().Address();
        text << "serving: " << mDirectory << "/" << address.requestSocket << " (" << address.name << ")\n";
    }
    if (!mSettings.stateDirectory.empty()) text << "state: " << mSettings.stateDirectory << "\n";
    text << "control: " << mControl->Path() << "\n";
    return text.str();
}

std::string Simulator::Command(const std::string& line) {
    std::istringstream input(line);
    std::string name;
    std::vector<std::string> words;
    input >> name;
    for (std::string word; input >> word;) words.push_back(word);
    try {
        std::string answer = Run(name, words);
        std::replace_if(
            answer.begin(), answer.end(), [](unsigned char c) { return c < 0x20; }, ' ');  // it is one line
        return answer.empty() ? "ok" : "ok " + answer;
    } catch (const std::exception& e) {
        return std::string("error: ") + e.what();
    }
}

std::string Simulator::Run(const std::string& name, const std::vector<std::string>& words) {
    if (name == "stop-answering") return SetAnswering(words, false);
    if (name == "answer") return SetAnswering(words, true);
    if (name == "help") return Help();
    std::set<std::string> known{"stop-answering", "answer", "help"};
    for (const auto& entry : mFamilies) {
        const auto& commands = entry.second->Served().Commands();
        const auto found = commands.find(name);
        if (found != commands.end()) return found->second.run(words);
        for (const auto& command : commands) known.insert(command.first);
    }
    throw Refused("there is no command \"" + Excerpt(name) + "\"" + DidYouMean(name, known));
}

std::string Simulator::SetAnswering(const std::vector<std::string>& words, bool answering) {
    if (words.size() != 1) throw Refused(answering ? "usage: answer FAMILY" : "usage: stop-answering FAMILY");
    const auto found = mFamilies.find(words[0]);
    if (found != mFamilies.end()) {
        found->second->StopAnswering(!answering);
        return "";
    }
    std::set<std::string> known;
    for (const auto& entry : mFamilies) known.insert(entry.first);
    throw Refused("there is no family \"" + Excerpt(words[0]) + "\"" + DidYouMean(words[0], known));
}

std::string Simulator::Help() const {
    std::string text = "stop-answering FAMILY; answer FAMILY";
    for (const auto& entry : mFamilies) {
        for (const auto& command : entry.second->Served().Commands()) text += "; " + command.second.usage;
    }
    return text;
}

}  // namespace hbbtv::sim
