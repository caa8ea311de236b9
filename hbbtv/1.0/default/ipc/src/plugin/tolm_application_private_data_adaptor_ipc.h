// Facts about the television for the application that runs on it.
#pragma once

#include "ipc/src/tolm_adaptor_call.h"
#include "ipc/src/tolm_adaptor_instance.h"

// The names begin with a lower-case letter, as they do in the log.
class TolmApplicationPrivateDataAdaptorIpc : public tolm::TolmAdaptorClient,
                                             public tolm::TolmAdaptorInstance<TolmApplicationPrivateDataAdaptorIpc> {
  public:
    int getFreeMem(int& size);  // bytes; -1 if unknown
    int getCurrentChannel(void*& channel);

  private:
    friend class tolm::TolmAdaptorInstance<TolmApplicationPrivateDataAdaptorIpc>;
    TolmApplicationPrivateDataAdaptorIpc();
    ~TolmApplicationPrivateDataAdaptorIpc() = default;
};
