// Components of video/broadcast (OIPF DAE 7.13.4, 7.16.5.1).

extendClass(VideoBroadcast, {
    // All kinds if componentType is null or undefined.
    getComponents(componentType) {
        const session = sessionOf(this);
        if (session.playState === kUnrealized) return new AVComponentCollection([]);
        const counted = kindsOf(componentType).map((type) => ({type,
            call: callOf('IVideoBroadcast.GetAVComponentNumByType', {vb: session.handle, type})}));
        const counts = exchangeCalls(counted.map(({call}) => call));
        return readComponents(counted.flatMap(({type}, index) => Array.from(
            {length: counts[index] ? counts[index].num : 0}, (_, at) => callOf(
                'IVideoBroadcast.GetSpecificTypeAVComponentByIndex', {vb: session.handle, type, index: at}))));
    },

    getCurrentActiveComponents(componentType) {
        const session = sessionOf(this);
        if (session.playState === kUnrealized) return undefined;
        const vb = session.handle;
        const counts = exchangeCalls(kindsOf().map((type) => callOf(
            'IVideoBroadcast.GetCurrentActiveAVComponentNumByType', {vb, type})));
        const count = counts.reduce((sum, results) => sum + (results ? results.num : 0), 0);
        // The platform's index runs over all kinds.
        const kinds = kindsOf(componentType);
        return readComponents(Array.from({length: count}, (_, index) => callOf(
            'IVideoBroadcast.GetSpecificTypeCurrentActiveAVComponentByIndex', {vb, type: kinds[0], index})), kinds);
    },

    // Takes a component, or a type for its default component.
    selectComponent(componentOrType) {
        changeComponent(this, 'IVideoBroadcast.SelectComponent', componentOrType);
    },

    unselectComponent(componentOrType) {
        changeComponent(this, 'IVideoBroadcast.UnselectComponent', componentOrType);
    },
});
defineConstants(VideoBroadcast, kComponentTypes);
// The standard spells the property in both ways.
defineHandlers(VideoBroadcast, ['onSelectedComponentChanged', 'onSelectedComponentChange', 'onComponentChanged']);

function kindsOf(componentType) {
    return componentType === null || componentType === undefined ? Object.values(kComponentTypes) : [componentType | 0];
}

function readComponents(calls, kinds) {
    const found = exchangeCalls(calls).filter((results) => results !== null && results.component);
    const list = componentsOf(found.map(({component}) => component));
    return new AVComponentCollection(kinds ? list.filter(({type}) => kinds.includes(type)) : list);
}

function changeComponent(object, method, componentOrType) {
    const vb = sessionOf(object).handle;
    if (!vb) return;
    if (typeof componentOrType === 'number') tellPlatform(method + 'ByType', {vb, type: componentOrType | 0});
    else if (handleOf(componentOrType)) tellPlatform(method, {vb, component: handleOf(componentOrType)});
}

onBroadcast('onComponentType11', (session, {componentType}) => {
    fire(session.object, 'SelectedComponentChanged', {componentType});
    fire(session.object, 'SelectedComponentChange', {componentType});
});

onBroadcast('onComponentType15', (session, {componentType}) => {
    fire(session.object, 'ComponentChanged', {componentType});
});
