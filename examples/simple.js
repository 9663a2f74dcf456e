// Sends a short text.
//
//     cscript simple.js server [port]

var mail = new ActiveXObject("Quorvane.SmtpMail");
mail.SmtpServer = WScript.Arguments(0);
if (WScript.Arguments.length > 1) mail.SmtpPort = Number(WScript.Arguments(1));

// JScript can't receive values through parameters; the outcome's text is asked for instead.
var code = mail.SimpleSendScriptable("Zoe <zoe@bjork.example>",
    "Ann Miller <ann@example.org>; bob@example.org",
    "Tonight",
    "Dinner at eight?",
    null);

if (code !== 0) {
    WScript.Echo("Not sent (" + code + "): " + mail.GetLastErrorDescription());
    WScript.Quit(1);
}
WScript.Echo("Sent.");
