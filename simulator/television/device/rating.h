// A rating of a programme for minors, and the collections of them that clients hold.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace hbbtv::sim {

// Schemes of OIPF DAE volumes 3 and 5.
inline constexpr const char* kSchemeDvbSi = "dvb-si";
inline constexpr const char* kSchemeFsk = "urn:oipf:GermanyFSKCS";
inline constexpr const char* kSchemeMpaa = "urn:mpeg:mpeg7:cs:MPAAParentalRatingCS:2001";

// OIPF DAE volume 5: for the scheme dvb-si the value is the minimum age, for others the position in the scheme.
struct Rating {
    std::string scheme;
    std::string name;
    int value = 0;
    uint32_t labels = 0;  // bits, see the protocol
    std::string region;   // ISO 3166, two letters; empty: everywhere
};

using RatingCollection = std::vector<std::shared_ptr<Rating>>;

}  // namespace hbbtv::sim
