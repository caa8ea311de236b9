// The whole simulator: television, families, their sockets, the control socket. Constructing it serves everything;
// destroying it removes the sockets.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "core/control_server.h"
#include "core/dispatcher.h"
#include "core/event_loop.h"
#include "core/event_sender.h"
#include "families/families.h"

namespace hbbtv::sim {

// Name of the control socket in the directory.
extern const char* const kControlSocket;

class Simulator {
  public:
    // Without a guide programmes are made up. Throws CannotServe and CannotKeep.
    Simulator(EventLoop& loop, const Journal& journal, LineUp lineUp, const Settings& settings, std::string directory,
              std::unique_ptr<Guide> guide);
    ~Simulator();
    Simulator(const Simulator&) = delete;
    Simulator& operator=(const Simulator&) = delete;

    // What the control socket does with a line: "ok", "ok ..." or "error: ...".
    std::string Command(const std::string& line);

    // The block that is printed at the start.
    std::string Summary() const;

  private:
    EventSink& SinkOf(const FamilyAddress& address);
    void Serve(std::unique_ptr<Family> family);
    std::string Run(const std::string& name, const std::vector<std::string>& words);
    std::string SetAnswering(const std::vector<std::string>& words, bool answering);
    std::string Help() const;

    EventLoop& mLoop;
    const Journal& mJournal;
    Settings mSettings;
    std::string mDirectory;
    StateStore mState;
    Tv mTv;
    std::vector<std::unique_ptr<EventSender>> mSenders;
    std::map<std::string, std::unique_ptr<Dispatcher>> mFamilies;  // by name
    std::vector<std::unique_ptr<LocalListener>> mListeners;
    std::unique_ptr<ControlServer> mControl;
};

}  // namespace hbbtv::sim
