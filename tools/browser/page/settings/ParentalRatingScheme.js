// ParentalRatingScheme: a collection of rating values (OIPF DAE 7.9.2).

// The interface does not give the values of a scheme. Those of the standard's schemes are known; "dvb-si" has none.
const valuesOfStandardSchemes = {
    'urn:oipf:GermanyFSKCS': ['0', '6', '12', '16', '18'],
    'urn:mpeg:mpeg7:cs:MPAAParentalRatingCS:2001': ['G', 'PG', 'PG-13', 'R', 'NC-17', 'NR'],
};

class ParentalRatingScheme extends Collection {
    #name;

    constructor(handle, name, values) {
        super(fixed(values || valuesOfStandardSchemes[name] || []));
        setHandle(this, handle);
        this.#name = name;
    }

    get name() { return this.#name; }

    // null: nothing is blocked.
    get threshold() {
        return ratings.get(askPlatform('IParentalControlManager.GetThreshold', {scheme: handleOf(this)}, 'rating', 0));
    }

    indexOf(ratingValue) {
        const wanted = String(ratingValue).toLowerCase();
        return Array.from(this).findIndex((value) => value.toLowerCase() === wanted);
    }

    iconUri(index) {
        if (this.item(index) === undefined) return undefined;
        return askPlatform('IParentalControlManager.GetIconUrl', {scheme: handleOf(this), index}, 'url', null) || null;
    }
}
makeEnumerable(ParentalRatingScheme);

class ParentalRatingSchemeCollection extends Collection {
    constructor(manager) {
        const source = new Fetched(() => fetchSchemes(manager));
        super(source);
        setHandle(this, manager);
        listDetails.set(this, {source});
    }

    // Returns the scheme of this name, which is created if there is none, or null if the platform does not create it.
    addParentalRatingScheme(name, values) {
        const known = this.getParentalRatingScheme(name);
        if (known !== undefined) return known;
        const scheme = askPlatform('IParentalControlManager.AddScheme',
            {manager: handleOf(this), name: String(name), values: String(values)}, 'scheme', 0);
        if (!scheme) return null;
        valuesOfAddedSchemes.set(scheme, String(values).split(',').map((value) => value.trim()));
        listDetails.get(this).source.forget();
        return this.getParentalRatingScheme(name) || null;
    }

    getParentalRatingScheme(name) {
        return Array.from(this).find((scheme) => scheme.name === String(name));
    }
}
makeEnumerable(ParentalRatingSchemeCollection);

const valuesOfAddedSchemes = new Map();

function fetchSchemes(manager) {
    if (!manager) return [];
    const handles = fetchItems('IParentalControlManager.GetParentalRatingSchemeNum', 'n',
        'IParentalControlManager.GetParentalRatingSchemeByIndex', 'scheme', {manager}, (scheme) => scheme);
    const names = handles && exchangeCalls(handles.map((scheme) =>
        callOf('IParentalControlManager.GetParentalRatingSchemeName', {scheme})));
    return names && handles.map((scheme, index) => new ParentalRatingScheme(scheme,
        names[index] ? names[index].name : '', valuesOfAddedSchemes.get(scheme)));
}
