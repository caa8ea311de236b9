// The object carousel that services broadcast: the files of a directory, and what the file carousel.json in it says
// about them. It is documented in docs/simulator.md.
#pragma once

#include <chrono>
#include <map>
#include <optional>
#include <string>

#include "television/files/carousel_url.h"
#include "television/line_up/line_up.h"
#include "text/json_source.h"

namespace hbbtv::sim {

struct CarouselFile {
    std::chrono::milliseconds delay{0};                        // until a file that was asked for is there
    std::optional<std::chrono::milliseconds> newVersionEvery;  // without: when the viewer says so
    int version = 0;                                           // 0 to 255
    size_t largest = 16u << 20;                                // what is larger cannot be received
};

class Carousel {
  public:
    // Throws Fatal when the directory or the file in it makes no sense.
    explicit Carousel(std::string directory);

    // Whether the service carries it.
    bool IsIn(const Service& service) const;

    int ComponentTag() const { return mComponentTag; }

    // The file that an application begins with; nothing for an application that is not signalled.
    std::optional<CarouselPath> StartOf(const ApplicationId& application) const;

    // What is said about a file, also one that is not there.
    CarouselFile About(const CarouselPath& path) const;

    // Those about which something is said.
    const std::map<CarouselPath, CarouselFile>& Described() const { return mFiles; }

    // From now on the file is sent as another version, which is returned: 0 follows 255.
    int NextVersion(const CarouselPath& path);

    // What the file holds now. Throws Refused with the reason when it cannot be received; links lead
    // nowhere.
    std::string Read(const CarouselPath& path) const;

  private:
    void ReadSideFile(const std::string& file);
    void ReadFiles(const JsonSource& source, const Json::Value& list);
    void ReadApplications(const JsonSource& source, const Json::Value& list);

    std::string mDirectory;
    int mComponentTag = 0x17;
    struct Triplet {
        int onid, tsid, sid;
    };
    std::optional<Triplet> mService;  // without: every service
    CarouselFile mUsual;
    std::map<CarouselPath, CarouselFile> mFiles;
    std::map<std::string, CarouselPath> mApplications;  // by the text of their ids
};

}  // namespace hbbtv::sim
