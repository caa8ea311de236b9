// Programme (OIPF DAE 7.16.2).

const programmeReaders = {
    name: ['IProgramme.GetName', 'name'],
    description: ['IProgramme.GetDescription', 'description', orUndefined],
    longDescription: ['IProgramme.GetLongDescription', 'description', orUndefined],
    startTime: ['IProgramme.GetStartTime', 'startTime'],
    duration: ['IProgramme.GetDuration', 'duration'],
    channelID: ['IProgramme.GetChannelID', 'channelId'],
    programmeID: ['IProgramme.GetProgramID', 'programId'],
    programmeIDType: ['IProgramme.GetProgramIDType', 'programIdType'],
};

const programmeWriters = {
    name: ['IProgramme.SetName', 'name', String],
    description: ['IProgramme.SetDescription', 'description', String],
    longDescription: ['IProgramme.SetLongDescription', 'description', String],
    startTime: ['IProgramme.SetStartTime', 'startTime', Number],
    duration: ['IProgramme.SetDuration', 'duration', Number],
    channelID: ['IProgramme.SetChannelID', 'channelId', String],
    programmeID: ['IProgramme.SetProgramID', 'programId', String],
    programmeIDType: ['IProgramme.SetProgramIDType', 'programIdType', Number],
};

class Programme {
    #properties = new Properties(this, 'programme', programmeReaders, {ofTask: true});

    static partOf(programme) { return programme.#properties; }

    get channel() {
        const list = channelConfig.channelList;
        return list && this.channelID ? list.getChannel(this.channelID) : null;
    }

    get parentalRatings() {
        return new ParentalRatingCollection(askPlatform('IProgramme.GetParentalRatings', {programme: handleOf(this)},
            'ratings', 0));
    }

    // Each string is a descriptor, each character a byte. null if there is no such descriptor.
    getSIDescriptors(descriptorTag, descriptorTagExtension, privateDataSpecifier) {
        const programme = handleOf(this);
        const [, counted] = exchangeCalls([callOf('IProgramme.GetSIDescriptorByEventId', {programme,
            descTag: descriptorTag | 0, descTagExt: descriptorTagExtension | 0,
            privateDataSpecifier: privateDataSpecifier | 0}), callOf('IProgramme.GetSIDescriptorNum', {programme})]);
        if (counted === null) return undefined;
        const calls = Array.from({length: counted.num}, (_, index) =>
            callOf('IProgramme.GetSIDescriptorByIndex', {programme, index}));
        const found = exchangeCalls(calls).filter(Boolean).map(({descriptor}) => descriptor)
            .filter((descriptor) => descriptor.charCodeAt(0) === (descriptorTag | 0));
        return found.length > 0 ? new StringCollection(found) : null;
    }

    // The interface has nothing for the following.
    get longName() { return undefined; }
    get episode() { return undefined; }
    get totalEpisodes() { return undefined; }
    get is3D() { return undefined; }
    get IMI() { return undefined; }
    get groupCRIDs() { return undefined; }
    get blocked() { return false; }
    get locked() { return false; }
    get showType() { return 2; }
    get subtitles() { return undefined; }
    get isHD() { return undefined; }
    get audioType() { return undefined; }
    get isMultilingual() { return undefined; }
    get genre() { return undefined; }
    get hasRecording() { return false; }
    get audioLanguages() { return undefined; }
    get subtitleLanguages() { return undefined; }
    get recording() { return undefined; }
    getField() { return undefined; }
}

for (const [name, [method, argument, convert]] of Object.entries(programmeWriters)) {
    Object.defineProperty(Programme.prototype, name, {
        get() { return Programme.partOf(this).get(name); },
        set(value) {
            tellPlatform(method, {programme: handleOf(this), [argument]: convert(value)});
            Programme.partOf(this).forget();
        },
        configurable: true,
    });
}
makeEnumerable(Programme);
defineConstants(Programme, {ID_TVA_CRID: 0, ID_DVB_EVENT: 1, ID_TVA_GROUP_CRID: 2});

const programmes = new ObjectsByHandle(Programme);

// Returns the programmes with these handles. Their properties are read together when the first one's are.
function programmesOf(list) {
    const found = list.map((handle) => programmes.get(handle));
    readTogether(found.map(Programme.partOf));
    return found;
}

class ProgrammeCollection extends Collection {}
