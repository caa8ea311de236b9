// How the platform rates programmes for minors: managers, rating schemes, ratings and collections of ratings.
#pragma once

#include <string>

#include "ipc/src/tolm_adaptor_call.h"
#include "ipc/src/tolm_adaptor_instance.h"

// All operations may be called from any thread. Each gives the platform's status (0 for success) or -1 when the
// platform did not answer properly; results are written only on success. `manager`, `scheme`, `rating` (also one that
// is a threshold) and `collection` are handles, valid until they are given back.
class TolmParentalControlManagerAdaptorIpc : public tolm::TolmAdaptorClient,
                                             public tolm::TolmAdaptorInstance<TolmParentalControlManagerAdaptorIpc> {
  public:
    int Create(void*& manager);
    int Destroy(const void* manager);
    int GetParentalRatingSchemeNum(const void* manager, unsigned& n);
    int GetParentalRatingSchemeByIndex(const void* manager, unsigned index, void*& scheme);
    int AddScheme(const void* manager, const std::string& name, const std::string& values, void*& scheme);
    int ReleaseParentalRatingScheme(const void* scheme);
    int GetParentalRatingSchemeName(const void* scheme, std::string& name);
    int GetThreshold(const void* scheme, void*& rating);
    int GetIconUrl(const void* scheme, unsigned index, std::string& url);
    int ReleaseParentalRating(const void* rating);
    int GetScheme(const void* rating, std::string& scheme);
    int GetParentalRatingName(const void* rating, std::string& name);
    int GetValue(const void* rating, int& value);
    int GetLabel(const void* rating, unsigned& labels);
    int GetRegion(const void* rating, std::string& region);
    int GetRatingNum(const void* collection, unsigned& n);
    int GetRatingByIndex(const void* collection, unsigned index, void*& rating);
    int AddParentalRating(const void* collection, const std::string& scheme, const std::string& name, int value,
                          unsigned labels, const std::string& region);
    int ReleaseParentalRatingCollection(const void* collection);

    // The rating is not asked for when `rating` is null.
    int GetLocalParentalRating(std::string& countryCode, int* rating);

  private:
    friend class tolm::TolmAdaptorInstance<TolmParentalControlManagerAdaptorIpc>;
    TolmParentalControlManagerAdaptorIpc();
    ~TolmParentalControlManagerAdaptorIpc() = default;
};
