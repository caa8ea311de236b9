// ParentalRating and its collection (OIPF DAE 7.9.4, 7.9.5).

const ratingReaders = {
    name: ['IParentalControlManager.GetParentalRatingName', 'name'],
    scheme: ['IParentalControlManager.GetScheme', 'scheme'],
    value: ['IParentalControlManager.GetValue', 'value'],
    labels: ['IParentalControlManager.GetLabel', 'labels'],
    region: ['IParentalControlManager.GetRegion', 'region', orUndefined],
};

class ParentalRating {
    #properties = new Properties(this, 'rating', ratingReaders, {ofTask: true});

    static partOf(rating) { return rating.#properties; }
}
defineRead(ParentalRating, Object.keys(ratingReaders), ParentalRating.partOf);

const ratings = new ObjectsByHandle(ParentalRating);

class ParentalRatingCollection extends Collection {
    constructor(handle) {
        const source = new Fetched(() => handle ? fetchItems('IParentalControlManager.GetRatingNum', 'n',
            'IParentalControlManager.GetRatingByIndex', 'rating', {collection: handle},
            (rating) => ratings.get(rating)) : []);
        super(source);
        setHandle(this, handle);
        listDetails.set(this, {source});
    }

    addParentalRating(scheme, name, value, labels, region) {
        tellPlatform('IParentalControlManager.AddParentalRating', {collection: handleOf(this), scheme: String(scheme),
            name: String(name), value: value | 0, labels: labels >>> 0, region: region || ''});
        listDetails.get(this).source.forget();
    }
}
makeEnumerable(ParentalRatingCollection);
