// The object carousel that services broadcast: the files of a directory, with the settings of the file carousel.json in
// it. See docs/simulator.md.
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
    std::chrono::milliseconds delay{0};                        // from the request to the file
    std::optional<std::chrono::milliseconds> newVersionEvery;  // default: only when the viewer changes it
    int version = 0;                                           // 0 to 255
    size_t largest = 16u << 20;                                // larger files cannot be received
};

class Carousel {
  public:
    // Throws Fatal if the directory or carousel.json is invalid.
    explicit Carousel(std::string directory);

    // Returns whether the service carries it.
    bool IsIn(const Service& service) const;

    int ComponentTag() const { return mComponentTag; }

    // Returns the start file of an application; nothing for an application that is not signalled.
    std::optional<CarouselPath> StartOf(const ApplicationId& application) const;

    // Returns the settings of a file, which may be missing.
    CarouselFile About(const CarouselPath& path) const;

    // Returns the files that have settings.
    const std::map<CarouselPath, CarouselFile>& Described() const { return mFiles; }

    // Moves the file to the next version, and returns it: 255 is followed by 0.
    int NextVersion(const CarouselPath& path);

    // Returns the contents of the file. Throws Refused with the reason if it cannot be received; links are not
    // followed.
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
    std::optional<Triplet> mService;  // default: every service
    CarouselFile mUsual;
    std::map<CarouselPath, CarouselFile> mFiles;
    std::map<std::string, CarouselPath> mApplications;  // by their ids as a string
};

}  // namespace hbbtv::sim
