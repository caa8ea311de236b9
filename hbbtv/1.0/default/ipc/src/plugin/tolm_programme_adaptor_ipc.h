// The platform's programmes, the events of the broadcast schedule.
#pragma once

#include <string>

#include "ipc/src/tolm_adaptor_call.h"
#include "ipc/src/tolm_adaptor_instance.h"

// `programme` is a programme's handle. Times are in seconds.
class TolmProgrammeAdaptorIpc : public tolm::TolmAdaptorClient,
                                public tolm::TolmAdaptorInstance<TolmProgrammeAdaptorIpc> {
  public:
    // One-way.
    int Release(const void* programme);

    int GetName(const void* programme, std::string& name);
    int SetName(const void* programme, const std::string& name);
    int GetDescription(const void* programme, std::string& description);
    int SetDescription(const void* programme, const std::string& description);
    int GetLongDescription(const void* programme, std::string& description);
    int SetLongDescription(const void* programme, const std::string& description);
    int GetStartTime(const void* programme, int& startTime);
    int SetStartTime(const void* programme, int startTime);
    int GetDuration(const void* programme, int& duration);
    int SetDuration(const void* programme, int duration);
    int GetChannelID(const void* programme, std::string& channelID);
    int SetChannelID(const void* programme, const std::string& channelID);
    int GetProgramID(const void* programme, std::string& programID);
    int SetProgramID(const void* programme, const std::string& programID);
    int GetProgramIDType(const void* programme, int& programIDType);
    int SetProgramIDType(const void* programme, int programIDType);
    int GetParentalRatings(const void* programme, void*& collection);
    int GetSIDescriptorNum(const void* programme, unsigned& num);

    // Returns at most the first 256 bytes of the descriptor, which may be zero.
    int GetSIDescriptorByIndex(const void* programme, unsigned index, std::string& descriptor);

    // One-way.
    int GetSIDescriptorByEventId(const void* programme, int descTag, int descTagExt, int privateDataSpecifier);

  private:
    friend class tolm::TolmAdaptorInstance<TolmProgrammeAdaptorIpc>;
    TolmProgrammeAdaptorIpc();
    ~TolmProgrammeAdaptorIpc() = default;
};
