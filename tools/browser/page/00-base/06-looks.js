// How embedded objects look: an <object> without a child is painted as a missing plugin, so each gets one. What a page
// gave it as a substitute for a browser without the object is hidden.

const kObjects = 'object[type="video/broadcast" i], object[type^="application/oipf" i]';

const looks = new CSSStyleSheet();
looks.replaceSync(`
:where(object[type="video/broadcast" i]) { display: inline-block; color: transparent; }
:where(object[type^="application/oipf" i]) { display: inline-block; width: 0; height: 0; overflow: hidden; }
:is(${kObjects}) > :not([data-hbbtv-picture]) { display: none !important; }
[data-hbbtv-picture] { display: block; width: 100%; height: 100%; }
`);
document.adoptedStyleSheets = [...document.adoptedStyleSheets, looks];

// Returns the child that shows the picture: transparent, or black while presentation is stopped.
function pictureOf(element) {
    let picture = element.querySelector(':scope > [data-hbbtv-picture]');
    if (picture === null) {
        picture = document.createElement('span');
        picture.setAttribute('data-hbbtv-picture', '');
        element.append(picture);
    }
    return picture;
}

function addPictures(node) {
    if (!(node instanceof Element)) return;
    if (node.matches(kObjects)) pictureOf(node);
    for (const element of node.querySelectorAll(kObjects)) pictureOf(element);
}

new MutationObserver((changes) => {
    for (const change of changes) {
        if (change.type === 'attributes') addPictures(change.target);
        for (const node of change.addedNodes) addPictures(node);
    }
}).observe(document, {childList: true, subtree: true, attributes: true, attributeFilter: ['type']});
