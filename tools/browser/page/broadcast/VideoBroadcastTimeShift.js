// Time shift and recording of video/broadcast (OIPF DAE 7.13.2). The interface reports what the television does by
// itself, but takes no request, so the methods refuse.

extendClass(VideoBroadcast, {
    get playSpeed() { return sessionOf(this).playSpeed; },
    get playPosition() { return sessionOf(this).playPosition; },
    get recordingState() { return sessionOf(this).recordingState; },
    get playSpeeds() { return undefined; },
    get playbackOffset() { return undefined; },
    get maxOffset() { return undefined; },
    get timeShiftMode() { return 0; },
    set timeShiftMode(mode) {},
    get currentTimeShiftMode() { return 0; },

    recordNow() { return undefined; },
    stopRecording() {},
    pause() { return false; },
    resume() { return false; },
    setSpeed() { return false; },
    seek() { return false; },
    stopTimeshift() { return false; },
});
defineConstants(VideoBroadcast, {POSITION_START: 0, POSITION_CURRENT: 1, POSITION_END: 2});
defineHandlers(VideoBroadcast,
    ['onPlaySpeedChanged', 'onPlayPositionChanged', 'onRecordingEvent', 'onPlaySpeedsArrayChanged']);

onBroadcast('onPlaySpeedChanged', (session, {speed}) => {
    session.playSpeed = speed;
    fire(session.object, 'PlaySpeedChanged', {speed});
});

onBroadcast('onPlayPositionChanged', (session, {position}) => {
    session.playPosition = position;
    fire(session.object, 'PlayPositionChanged', {position});
});

onBroadcast('onRecordingEvent', (session, {state, error, recordingId}) => {
    session.recordingState = state;
    // Only a failure ends in the state 0.
    fire(session.object, 'RecordingEvent', {state, error: state === 0 ? error : undefined,
        recordingId: recordingId || undefined});
});
