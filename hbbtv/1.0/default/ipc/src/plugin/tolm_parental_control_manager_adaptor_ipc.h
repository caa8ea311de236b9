// The rating of programmes for minors: managers, rating schemes, ratings and collections of ratings.
#pragma once

#include <string>

#include "ipc/src/tolm_adaptor_call.h"
#include "ipc/src/tolm_adaptor_instance.h"

// `manager`, `scheme`, `rating` (including one that is a threshold) and `collection` are handles.
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

    // `rating` may be null.
    int GetLocalParentalRating(std::string& countryCode, int* rating);

  private:
    friend class tolm::TolmAdaptorInstance<TolmParentalControlManagerAdaptorIpc>;
    TolmParentalControlManagerAdaptorIpc();
    ~TolmParentalControlManagerAdaptorIpc() = default;
};
