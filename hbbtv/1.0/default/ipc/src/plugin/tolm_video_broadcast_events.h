// The platform's events of video/broadcast objects and of media synchronisation, as records for plain callbacks.
#pragma once

#include <json/json.h>

#include <cstdint>
#include <string>

// Event codes of the wire. Codes without a name (17 to 22 are known to clients) have an all-zero record.
using TolmVideoBroadcastEvent = int32_t;
enum : TolmVideoBroadcastEvent {
    TOLM_VB_EVENT_CHANNEL_ERROR = 0,
    TOLM_VB_EVENT_PLAY_STATE = 1,
    TOLM_VB_EVENT_CHANNEL_CHANGED = 2,
    TOLM_VB_EVENT_FULL_SCREEN = 3,
    TOLM_VB_EVENT_PLAIN_4 = 4,
    TOLM_VB_EVENT_PLAIN_5 = 5,
    TOLM_VB_EVENT_PLAY_SPEED = 6,
    TOLM_VB_EVENT_PLAY_POSITION = 7,
    TOLM_VB_EVENT_RECORDING = 8,
    TOLM_VB_EVENT_PLAIN_9 = 9,
    TOLM_VB_EVENT_PLAIN_10 = 10,
    TOLM_VB_EVENT_COMPONENT_TYPE_11 = 11,
    TOLM_VB_EVENT_PARENTAL_RATING = 12,
    TOLM_VB_EVENT_PARENTAL_RATING_BLOCKED = 13,
    TOLM_VB_EVENT_DRM_RIGHTS_ERROR = 14,
    TOLM_VB_EVENT_COMPONENT_TYPE_15 = 15,
    TOLM_VB_EVENT_STREAM_EVENT = 16,
};

// A malloc'ed copy of a string (NUL-terminated) or of bytes (not terminated) of the wire, or null. The length is that
// on the wire; a string may contain zero bytes.
struct TolmOwnedText {
    char* text;
    uint32_t length;
};

struct TolmVbChannelError {
    void* channel;
    int32_t errorState;
};

struct TolmVbPlayState {
    int32_t state;
    int32_t error;
};

struct TolmVbChannelChanged {
    void* channel;
    void* viewerChannel;
    int32_t quiet;
};

struct TolmVbRecording {
    int32_t state;
    int32_t error;
    TolmOwnedText recordingId;
};

struct TolmVbParentalRating {
    TolmOwnedText contentId;
    void* ratings;  // a parental-rating collection
    TolmOwnedText drmSystemId;
    bool blocked;  // of TOLM_VB_EVENT_PARENTAL_RATING_BLOCKED only
};

struct TolmVbDrmRightsError {
    int32_t error;
    TolmOwnedText contentId;
    TolmOwnedText drmSystemId;
    TolmOwnedText rightsIssuerUrl;
};

struct TolmVbStreamEvent {
    TolmOwnedText url;
    TolmOwnedText eventName;
    TolmOwnedText data;
    TolmOwnedText text;  // bytes, not terminated
    TolmOwnedText status;
};

// The member of the event's code is set; the rest is zero.
union TolmVideoBroadcastEventInfo {
    TolmVbChannelError channelError;
    TolmVbPlayState playState;
    TolmVbChannelChanged channelChanged;
    int32_t fullScreen;
    double playSpeed;
    int32_t playPosition;  // milliseconds
    TolmVbRecording recording;
    TolmVbParentalRating parentalRating;  // both parental-rating events
    TolmVbDrmRightsError drmRightsError;
    int32_t componentType;  // both component-type events
    TolmVbStreamEvent streamEvent;
};

// Frees the strings of a record and zeroes it. The receiver of a record must call it.
void TolmFreeVideoBroadcastEventInfo(TolmVideoBroadcastEvent event, TolmVideoBroadcastEventInfo& info);

// Fills a record from an event message. A code without a name logs a warning and zeroes the record. If the message is
// invalid, logs the reason and returns false; then there is nothing to free.
bool TolmDecodeVideoBroadcastEvent(const Json::Value& msg, TolmVideoBroadcastEvent event,
                                   TolmVideoBroadcastEventInfo& info);

using TolmMediaSyncEvent = int32_t;

struct TolmMediaSyncTiming {
    bool available;
    uint64_t unitsPerTick;
    uint64_t unitsPerSecond;
    uint64_t contentTime;
    uint64_t wallClockTime;
};

// The members after a flag are set only if the flag is. The strings, which may be null, belong to the caller of the
// callback and are valid only during the call.
struct TolmMediaSyncContent {
    bool timelineOptionsChange;
    const char* timelineSelector;
    uint64_t unitsPerTick;
    uint64_t unitsPerSecond;
    bool contentIdChange;
    const char* contentId;
    int32_t contentIdStatus;
    bool mrsUrlChange;
    const char* mrsUrl;
};

// Codes 0 to 3 set the member next to them, codes 4 and 5 none.
union TolmMediaSyncEventInfo {
    TolmMediaSyncTiming timing;    // 0
    double speed;                  // 1
    TolmMediaSyncContent content;  // 2
    TolmVbPlayState playState;     // 3
};

// The strings that a media-synchronisation record points to.
struct TolmMediaSyncTexts {
    std::string timelineSelector;
    std::string contentId;
    std::string mrsUrl;
};

// Fills a record and the strings that it points to, which must outlive it. A code without a name logs a warning and
// zeroes the record.
void TolmDecodeMediaSyncEvent(const Json::Value& msg, TolmMediaSyncEvent event, TolmMediaSyncEventInfo& info,
                              TolmMediaSyncTexts& texts);
