// Checks for test scripts. A failed one is shown and the script goes on; Finish ends it.
var failures = 0;

function fail(text) {
    ++failures;
    WScript.Echo("FAILED " + text);
}

function shown(value) {
    return typeof value + " " + value;
}

// Value and type must be the same.
function equal(what, actual, expected) {
    if (actual !== expected) fail(what + ": " + shown(actual) + ", expected " + shown(expected));
}

// The body must end with an error of this number and, when it is given, this description.
function raises(what, number, description, body) {
    try {
        body();
    } catch (error) {
        equal(what + ", number", (error.number >>> 0).toString(16), number.toString(16));
        if (description !== null) equal(what + ", description", error.description, description);
        return;
    }
    fail(what + ": no error");
}

function finish() {
    WScript.Echo(failures === 0 ? "all checks passed" : failures + " checks failed");
    WScript.Quit(failures === 0 ? 0 : 1);
}
