// Sends a short text and tells every kind of failure apart.
//
//     cscript errors.js server port recipients

// What became of a send that was tried.
function explain(code, text) {
    if (code === 0) return "Sent.";
    // No connection, no answer, or no sense in it.
    if (code === -1) return "Something broke on the way: " + text;
    if (code >= 500) return "The server refuses this message: " + text;
    return "The server can't take it now, try again later: " + text;
}

var mail = new ActiveXObject("Quorvane.SmtpMail");
mail.SmtpServer = WScript.Arguments(0);
mail.SmtpPort = Number(WScript.Arguments(1));
mail.ConnectAttempts = 1;
mail.ReplyTimeout = 20;

var code;
try {
    code = mail.SimpleSendScriptable("zoe@bjork.example", WScript.Arguments(2), "Tonight",
        "Dinner at eight?", null);
} catch (error) {
    // Nothing was tried: the program has to be mended, or its settings.
    WScript.Echo("Wrong use: " + error.description);
    WScript.Quit(2);
}
WScript.Echo(explain(code, mail.GetLastErrorDescription()));
WScript.Quit(code === 0 ? 0 : 1);
