// The platform's programmes, the events of the broadcast schedule.
#pragma once

#include <string>

#include "ipc/src/tolm_adaptor_call.h"
#include "ipc/src/tolm_adaptor_instance.h"

// All operations may be called from any thread. Each gives the platform's status (0 for success) or -1 when the
// platform did not answer properly; results are written only on success. `programme` is a programme's handle, valid
// until it is released. Times are in seconds.
class TolmProgrammeAdaptorIpc : public tolm::TolmAdaptorClient,
                                public tolm::TolmAdaptorInstance<TolmProgrammeAdaptorIpc> {
  public:
    // The platform is told and not waited for.
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

    // The descriptor's bytes, zero bytes among them: the first 256 when there are more.
    int GetSIDescriptorByIndex(const void* programme, unsigned index, std::string& descriptor);

    // The platform is told and not waited for.
    int GetSIDescriptorByEventId(const void* programme, int descTag, int descTagExt, int privateDataSpecifier);

  private:
    friend class tolm::TolmAdaptorInstance<TolmProgrammeAdaptorIpc>;
    TolmProgrammeAdaptorIpc();
    ~TolmProgrammeAdaptorIpc() = default;
};
