// An application of HbbTV as a broadcaster writes it: a hint at first, and on the red key a list of channels with what
// is on, beside the picture. It uses nothing but the objects of the standard.
(function() {
    var video = document.getElementById('video');
    var configuration = document.getElementById('configuration').configuration;
    var application = document.getElementById('manager').getOwnerApplication(document);
    var keyset = application.privateData.keyset;

    var kRows = 12;
    var kEvents = 'dvb://current/events';
    var kLanguages = ['deu', 'eng', 'fra'];

    var channels = [];
    var focus = 0;
    var open = false;

    function element(id) {
        return document.getElementById(id);
    }

    function showKeys() {
        keyset.setValue(open ? keyset.RED | keyset.GREEN | keyset.YELLOW | keyset.BLUE | keyset.NAVIGATION : keyset.RED);
    }

    function isMarked(channel) {
        return localStorage.getItem(channel.ccid) !== null;
    }

    function isCurrent(channel) {
        return video.currentChannel !== null && video.currentChannel.ccid === channel.ccid;
    }

    function showChannels() {
        var list = element('channels');
        list.textContent = '';
        var first = Math.max(0, Math.min(focus - kRows / 2, channels.length - kRows));
        channels.slice(first, first + kRows).forEach(function(channel, row) {
            var item = document.createElement('li');
            item.textContent = channel.majorChannel + '  ' + channel.name + (isMarked(channel) ? '  \u2605' : '');
            item.className = (first + row === focus ? 'focus ' : '') + (isCurrent(channel) ? 'current' : '');
            list.appendChild(item);
        });
        element('mark').textContent = isMarked(channels[focus]) ? 'remove the mark' : 'mark';
    }

    function time(seconds) {
        return new Date(seconds * 1000).toTimeString().substr(0, 5);
    }

    function showProgrammes() {
        var details = element('details');
        details.textContent = '';
        for (var i = 0; i < video.programmes.length; ++i) {
            var programme = video.programmes[i];
            var line = document.createElement(i === 0 ? 'b' : 'span');
            line.textContent = time(programme.startTime) + '  ' + programme.name;
            details.appendChild(line);
        }
    }

    function showLanguage() {
        element('language').textContent = configuration.preferredAudioLanguage.split(',')[0];
    }

    function nextLanguage() {
        var present = configuration.preferredAudioLanguage.split(',')[0];
        configuration.preferredAudioLanguage = kLanguages[(kLanguages.indexOf(present) + 1) % kLanguages.length];
        var wanted = configuration.preferredAudioLanguage;
        var components = video.getComponents(video.COMPONENT_TYPE_AUDIO);
        for (var i = 0; i < components.length; ++i) {
            if (components.item(i).language === wanted) {
                video.selectComponent(components.item(i));
                break;
            }
        }
        showLanguage();
    }

    function mark() {
        var channel = channels[focus];
        if (isMarked(channel)) localStorage.removeItem(channel.ccid);
        else localStorage.setItem(channel.ccid, channel.name);
        showChannels();
    }

    function onStreamEvent(event) {
        element('event').textContent = event.status === 'error' ? '' : event.name + ': ' + event.text;
    }

    function listen() {
        video.addStreamEventListener(kEvents, 'quiz', onStreamEvent);
    }

    function showPicture() {
        video.style.left = open ? '560px' : '0';
        video.style.top = open ? '60px' : '0';
        video.style.width = open ? '640px' : '1280px';
        video.style.height = open ? '360px' : '720px';
    }

    function setOpen(isOpen) {
        open = isOpen;
        element('hint').className = open ? 'hidden' : '';
        element('application').className = open ? '' : 'hidden';
        showPicture();
        showKeys();
        if (!open) return;
        var list = video.getChannelConfig().channelList;
        channels = [];
        for (var i = 0; i < list.length; ++i) channels.push(list.item(i));
        focus = Math.max(0, channels.findIndex(isCurrent));
        showChannels();
        showProgrammes();
        showLanguage();
    }

    function move(step) {
        focus = (focus + step + channels.length) % channels.length;
        showChannels();
    }

    var actions = {};
    actions[VK_RED] = function() { setOpen(!open); };
    actions[VK_BACK] = function() { setOpen(false); };
    actions[VK_UP] = function() { move(-1); };
    actions[VK_DOWN] = function() { move(1); };
    actions[VK_ENTER] = function() { video.setChannel(channels[focus]); };
    actions[VK_GREEN] = nextLanguage;
    actions[VK_YELLOW] = mark;
    actions[VK_BLUE] = function() { video.setFullScreen(!video.fullScreen); };

    document.addEventListener('keydown', function(event) {
        var action = actions[event.keyCode];
        if (!action || (!open && event.keyCode !== VK_RED)) return;
        event.preventDefault();
        action();
    });

    video.addEventListener('ChannelChangeSucceeded', function() {
        listen();
        if (open) showChannels();
    });
    video.addEventListener('PlayStateChange', function(event) {
        if (open && event.state === 2) showProgrammes();
    });
    video.onProgrammesChanged = showProgrammes;
    video.onFullScreenChange = function() {
        document.body.className = video.fullScreen ? 'full' : '';
    };

    video.bindToCurrentChannel();
    listen();
    showKeys();
    application.show();
}());
