// Files of the object carousel: requests for them, and the events that report their state.
#include "family/family_setup.h"

#include "common/text/pointer_text.h"
#include "core/error.h"
#include "core/journal.h"
#include "family/members.h"
#include "television/files/carousel.h"
#include "television/files/local_files.h"

namespace hbbtv::sim {

namespace {

const char* const kDirectory = "/hbbtv_sim_carousel";
constexpr size_t kMostUses = 1000;

// The interface gives the events numbers only; these are the simulator's meanings.
enum class FileEvent { Arrived, Changed, Missing, CarouselLost, OnItsWay };

const char* const kEventNames[] = {"file ready", "file changed", "file not found", "carousel lost", "file pending"};

class DsmccFamily : public Family {
  public:
    explicit DsmccFamily(const FamilySetup& setup);

  private:
    using File = std::shared_ptr<const LocalFiles::File>;

    // A file requested by a caller and not released yet: the URL and the caller's context.
    struct Use {
        Use(EventLoop& loop, CarouselPath thePath) : path(std::move(thePath)), loading(loop) {}

        CarouselPath path;
        bool lost = false;      // its carousel was left; it waits for its release
        bool reported = false;  // an event has reported the file before
        File file;
        File before;  // the previous version, which a client may still be reading
        Timer loading;
    };

    using Key = std::pair<std::string, uint64_t>;

    void RequestFile(In in, Out);
    void ReleaseFile(In in, Out);

    std::optional<CarouselPath> Locate(const std::string& url) const;
    void Load(const Key& key, Use& use);
    void LoadingEnds(const Key& key, Use& use);
    File LocalCopy(const CarouselPath& path);
    void CarouselLeft();
    void Changed(const CarouselPath& path);
    void ChangeAgain(const CarouselPath& path, std::chrono::milliseconds interval, Timer& timer);
    void Send(FileEvent event, const Key& key, const File& file = nullptr);

    // At the television.
    std::string Change(const Words& words);

    EventLoop& mLoop;
    Tv& mTv;
    EventSink& mSink;
    std::unique_ptr<Carousel> mCarousel;  // null without one
    LocalFiles mLocalFiles;
    std::map<Key, Use> mUses;
    std::map<CarouselPath, std::weak_ptr<const LocalFiles::File>> mCopies;  // of the current versions
    std::map<CarouselPath, Timer> mChanges;
};

DsmccFamily::DsmccFamily(const FamilySetup& setup)
    : Family("dsmcc"),
      mLoop(setup.loop),
      mTv(setup.tv),
      mSink(Sends(setup.makeSink, {"file ready", "file changed", "file not found", "carousel lost", "file pending"})),
      mLocalFiles(setup.directory + kDirectory) {
    using F = DsmccFamily;
    Row("RequestFile", &F::RequestFile);
    Row("ReleaseFile", &F::ReleaseFile);
    AddCommand("carousel-change PATH", "send a file of the carousel as a new version", &F::Change);
    mTv.tuner.changed.Watch([this] { CarouselLeft(); });
    if (setup.settings.carousel.empty()) return;
    mCarousel = std::make_unique<Carousel>(setup.settings.carousel);
    for (const auto& [path, file] : mCarousel->Described()) {
        if (!file.newVersionEvery) continue;
        Timer& timer = mChanges.try_emplace(path, mLoop).first->second;
        ChangeAgain(path, *file.newVersionEvery, timer);
    }
}

// Returns nothing if the current service does not carry this carousel. Throws Refused for an invalid URL.
std::optional<CarouselPath> DsmccFamily::Locate(const std::string& text) const {
    const CarouselUrl url = ReadCarouselUrl(text);
    const Service* service = mTv.tuner.On()->service.get();
    if (!mCarousel || service == nullptr || !mCarousel->IsIn(*service)) return std::nullopt;
    if (url.application) {
        const auto start = mCarousel->StartOf(*url.application);
        if (!start) throw Refused("the current service signals no such application");
        return start;
    }
    const bool same = url.onid == service->onid && url.tsid == service->tsid && url.sid == service->sid &&
                      url.componentTag == mCarousel->ComponentTag();
    if (!same) return std::nullopt;
    return url.path;
}

// Repeating a request restarts it: the file is sent again, with its event.
void DsmccFamily::RequestFile(In in, Out) {
    const Key key(in.ShortText("url"), in.Pointer("context"));
    std::optional<CarouselPath> path;
    try {
        path = Locate(key.first);
    } catch (const Refused&) {
        Send(FileEvent::Missing, key);
        throw;
    }
    mUses.erase(key);
    if (mUses.size() >= kMostUses) throw Refused("too many files are in use; release some");
    Use& use = mUses.try_emplace(key, mLoop, path.value_or(CarouselPath())).first->second;
    use.lost = !path;
    use.lost ? Send(FileEvent::CarouselLost, key) : Load(key, use);
}

void DsmccFamily::ReleaseFile(In in, Out) {
    const Key key(in.ShortText("url"), in.Pointer("context"));
    if (mUses.erase(key) == 0) throw Refused("this file is not in use");
}

void DsmccFamily::Load(const Key& key, Use& use) {
    const auto delay = mCarousel->About(use.path).delay;
    if (delay.count() > 0) Send(FileEvent::OnItsWay, key);
    use.loading.Start(delay, [this, key, &use] { LoadingEnds(key, use); });
}

void DsmccFamily::LoadingEnds(const Key& key, Use& use) {
    try {
        const File copy = LocalCopy(use.path);
        use.before = use.file;
        use.file = copy;
    } catch (const Refused& e) {
        Journal::Log("dsmcc: " + Excerpt(PathText(use.path)) + " cannot be received: " + e.what());
        use.file.reset();
        use.before.reset();
        Send(FileEvent::Missing, key);
        return;
    }
    Send(use.reported ? FileEvent::Changed : FileEvent::Arrived, key, use.file);
    use.reported = true;
}

// All requests for a version share its copy.
DsmccFamily::File DsmccFamily::LocalCopy(const CarouselPath& path) {
    const auto known = mCopies.find(path);
    if (known != mCopies.end()) {
        if (const File copy = known->second.lock()) return copy;
        mCopies.erase(known);
    }
    const File copy = mLocalFiles.Put(path.back(), mCarousel->Read(path));
    mCopies[path] = copy;
    return copy;
}

// Another service has another carousel, even if its files are the same.
void DsmccFamily::CarouselLeft() {
    for (auto& [key, use] : mUses) {
        if (use.lost) continue;
        use.lost = true;
        use.loading.Cancel();
        use.file.reset();
        use.before.reset();
        Send(FileEvent::CarouselLost, key);
    }
    mCopies.clear();
}

void DsmccFamily::Changed(const CarouselPath& path) {
    mCopies.erase(path);
    for (auto& [key, use] : mUses) {
        if (!use.lost && use.path == path) Load(key, use);
    }
}

void DsmccFamily::ChangeAgain(const CarouselPath& path, std::chrono::milliseconds interval, Timer& timer) {
    timer.Start(interval, [this, path, interval, &timer] {
        ChangeAgain(path, interval, timer);
        mCarousel->NextVersion(path);
        Changed(path);
    });
}

void DsmccFamily::Send(FileEvent event, const Key& key, const File& file) {
    Json::Value members;
    members["url"] = key.first;
    members["filePath"] = file ? file->path : "";
    members["context"] = PointerText(key.second);
    mSink.Send(kEventNames[static_cast<int>(event)], members);
}

std::string DsmccFamily::Change(const Words& words) {
    const std::string& word = Word(words);
    if (!mCarousel) throw Refused("there is no carousel (see --carousel)");
    const CarouselPath path = ReadCarouselPath(word);
    const int version = mCarousel->NextVersion(path);
    Changed(path);
    return "version " + std::to_string(version);
}

}  // namespace

std::unique_ptr<Family> MakeDsmccFamily(const FamilySetup& setup) {
    return std::make_unique<DsmccFamily>(setup);
}

}  // namespace hbbtv::sim
