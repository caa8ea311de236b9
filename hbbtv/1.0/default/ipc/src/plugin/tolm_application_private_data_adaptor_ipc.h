// What the platform tells an application of the television it runs on.
#pragma once

#include "ipc/src/tolm_adaptor_call.h"
#include "ipc/src/tolm_adaptor_instance.h"

// All operations may be called from any thread. Each gives the platform's status (0 for success) or -1 when the
// platform did not answer properly; results are written only on success. The names begin with small letters here, and
// so they stand in the log.
class TolmApplicationPrivateDataAdaptorIpc : public tolm::TolmAdaptorClient,
                                             public tolm::TolmAdaptorInstance<TolmApplicationPrivateDataAdaptorIpc> {
  public:
    int getFreeMem(int& size);  // bytes, -1 when it is not known
    int getCurrentChannel(void*& channel);

  private:
    friend class tolm::TolmAdaptorInstance<TolmApplicationPrivateDataAdaptorIpc>;
    TolmApplicationPrivateDataAdaptorIpc();
    ~TolmApplicationPrivateDataAdaptorIpc() = default;
};
