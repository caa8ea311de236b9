// A browser as the tab manager's adaptor sees it: records its calls, and returns what the test sets.
#pragma once

#include <mutex>
#include <string>
#include <vector>

#include "ipc/src/mtm/tolm_mtm_callback.h"
#include "lenient_readings.h"

namespace hbbtv::test {

// Returns tab -11, render process -12, browser status -13 and a file, with the status that was set last.
class RecordingMtm : public TolmMtmCallback {
  public:
    // "name value value ...", the values as Show() returns them, and results as they come in.
    std::vector<std::string> Calls() const {
        std::lock_guard<std::mutex> lock(mMutex);
        return mCalls;
    }

    void Forget() {
        std::lock_guard<std::mutex> lock(mMutex);
        mCalls.clear();
    }

    void SetStatus(int status) {
        std::lock_guard<std::mutex> lock(mMutex);
        mStatus = status;
    }

    void SetXmlFile(const std::string& xmlFile) {
        std::lock_guard<std::mutex> lock(mMutex);
        mXmlFile = xmlFile;
    }

    int SetAppConfig(int tabId, bool isBroadcastRelated) override {
        return Note("SetAppConfig", tabId, isBroadcastRelated);
    }

    int SetDvbOrigin(int tabId, const std::string& origin) override { return Note("SetDvbOrigin", tabId, origin); }

    int CreateApp(const std::string& url, bool autoShow, bool isBroadcastRelated, const std::string& appMode,
                  const std::vector<std::string>& boundaries, int& tabId) override {
        const int status = Note("CreateApp", url, autoShow, isBroadcastRelated, appMode, boundaries, tabId);
        tabId = -11;
        return status;
    }

    int DestroyApp(int tabId) override { return Note("DestroyApp", tabId); }

    int DestroyAllApps() override { return Note("DestroyAllApps"); }

    int ShowHideTab(int tabId, bool show, bool isMulti) override { return Note("ShowHideTab", tabId, show, isMulti); }

    int GetXmlFile(const std::string& url, const std::string& appId, std::string& xmlFile) override {
        const int status = Note("GetXmlFile", url, appId, xmlFile);
        std::lock_guard<std::mutex> lock(mMutex);
        xmlFile = mXmlFile;
        return status;
    }

    int LoadURLInTab(int tabId, const std::string& url, bool autoShow, bool isBroadcastRelated,
                     const std::string& appMode, const std::vector<std::string>& boundaries) override {
        return Note("LoadURLInTab", tabId, url, autoShow, isBroadcastRelated, appMode, boundaries);
    }

    int GetRenderProcessId(int tabId, int& renderId) override {
        const int status = Note("GetRenderProcessId", tabId, renderId);
        renderId = -12;
        return status;
    }

    int SendKey(int key, int keyType, int keyEventId) override { return Note("SendKey", key, keyType, keyEventId); }

    int Ping(int* status) override {
        const int result = Note("Ping", *status);
        *status = -13;
        return result;
    }

  private:
    template <typename... Values>
    int Note(const char* name, const Values&... values) {
        std::string line = name;
        ((line += " " + Show(values)), ...);
        std::lock_guard<std::mutex> lock(mMutex);
        mCalls.push_back(line);
        return mStatus;
    }

    mutable std::mutex mMutex;
    std::vector<std::string> mCalls;        // guarded by mMutex
    int mStatus = 0;                        // guarded by mMutex
    std::string mXmlFile = "<a b=\"1\"/>";  // guarded by mMutex
};

}  // namespace hbbtv::test
