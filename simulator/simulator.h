// The whole simulator: television, families, their sockets, the control socket. Constructing it serves everything;
// destroying it removes the sockets.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "all_families.h"
#include "core/event_loop.h"
#include "server/control_server.h"
#include "server/dispatcher.h"
#include "server/event_sender.h"

namespace hbbtv::sim {

// Name of the control socket in the directory.
extern const char* const kControlSocket;

class Simulator {
  public:
    // Without a guide programmes are generated. Throws Fatal.
    Simulator(EventLoop& loop, const Journal& journal, LineUp lineUp, const Settings& settings, std::string directory,
              std::unique_ptr<Guide> guide);
    ~Simulator();
    Simulator(const Simulator&) = delete;
    Simulator& operator=(const Simulator&) = delete;

    // Executes a line of the control socket and returns "ok", "ok ..." or "error: ...".
    std::string Execute(const std::string& line);

    // Returns the lines that are printed at the start.
    std::string Summary() const;

  private:
    EventSink& MakeSink(const FamilyAddress& address, const EventTable& events);
    void Serve(std::unique_ptr<Family> family);
    void AddCommands();
    std::string Run(const Command& command, const Words& words) const;
    std::string SetAnswering(const Words& words, bool answering);
    std::string Help(const Words& words) const;
    const Command& Find(const std::string& name) const;

    EventLoop& mLoop;
    const Journal& mJournal;
    Settings mSettings;
    std::string mDirectory;
    StateStore mState;
    Tv mTv;
    std::vector<std::unique_ptr<EventSender>> mSenders;
    std::map<std::string, std::unique_ptr<Dispatcher>> mFamilies;  // by name
    std::vector<std::unique_ptr<LocalListener>> mListeners;
    std::map<std::string, Command> mCommands;  // by name, its own; the families have theirs
    std::unique_ptr<ControlServer> mControl;
};

}  // namespace hbbtv::sim
