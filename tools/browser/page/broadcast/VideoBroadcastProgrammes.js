// Programmes, ratings and rights of what video/broadcast presents (OIPF DAE 7.13.3, 7.13.5, 7.13.6).

extendClass(VideoBroadcast, {
    // The present programme and those that follow; empty while no channel is selected.
    get programmes() {
        const session = sessionOf(this);
        return session.playState === kUnrealized ? new ProgrammeCollection(fixed([])) :
            new ProgrammeCollection(session.programmes);
    },
});
defineHandlers(VideoBroadcast,
    ['onProgrammesChanged', 'onParentalRatingChange', 'onParentalRatingError', 'onDRMRightsError']);

function fetchProgrammes(session) {
    const found = fetchItems('IVideoBroadcast.GetProgrammeNum', 'num', 'IVideoBroadcast.GetProgrammeByIndex',
        'programme', {vb: session.handle}, (programme) => programme);
    return found && programmesOf(found);
}

// Events without values have numbers only. These two follow from the order in which the standard defines its events.
const kPlaySpeedsArrayChanged = 9;
const kProgrammesChanged = 10;

onBroadcast('onVideoBroadcastEvent', (session, {event}) => {
    if (event === kPlaySpeedsArrayChanged) fire(session.object, 'PlaySpeedsArrayChanged');
    if (event === kProgrammesChanged) {
        session.programmes.forget();
        fire(session.object, 'ProgrammesChanged');
    }
});

onBroadcast('onParentalRatingBlocked', (session, {contentId, ratings, drmSystemId, blocked}) => {
    fire(session.object, 'ParentalRatingChange', {contentID: contentId || null,
        ratings: new ParentalRatingCollection(ratings), DRMSystemID: drmSystemId || null, blocked});
});

onBroadcast('onParentalRating', (session, {contentId, ratings, drmSystemId}) => {
    fire(session.object, 'ParentalRatingError', {contentID: contentId || null,
        ratings: new ParentalRatingCollection(ratings), DRMSystemID: drmSystemId || null});
});

onBroadcast('onDrmRightsError', (session, {error, contentId, drmSystemId, rightsIssuerUrl}) => {
    fire(session.object, 'DRMRightsError', {errorState: error, contentID: contentId || null, DRMSystemID: drmSystemId,
        rightsIssuerURL: rightsIssuerUrl || undefined});
});
