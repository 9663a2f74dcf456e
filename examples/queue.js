// Sends in the background: a large mail with a bar that shows how far it is, then ten small ones
// whose status is told as it changes.
//
//     cscript queue.js server [port]

var MailStatusSent = 2;
var words = ["is queued", "is being sent", "was sent", "was not sent", "was cancelled"];

function address(text) {
    var result = new ActiveXObject("Quorvane.MailAddress");
    result.Address = text;
    return result;
}

function compose(subject, body) {
    var message = new ActiveXObject("Quorvane.MailMessage");
    message.SetSender(address("Zoe <zoe@bjork.example>"));
    message.AddRecipient(address("Ann Miller <ann@example.org>"));
    message.MessageSubject = subject;
    message.MessageBody = body;
    return message;
}

function repeated(text, times) {
    return new Array(times + 1).join(text);
}

var mail = new ActiveXObject("Quorvane.SmtpMail");
mail.SmtpServer = WScript.Arguments(0);
if (WScript.Arguments.length > 1) mail.SmtpPort = Number(WScript.Arguments(1));

// Functions are called while WScript.Sleep waits.
var tenths = 0;
mail.OnProgressHandler = function (number, bytesSent, bytesTotal) {
    if (Math.floor(bytesSent / bytesTotal * 10) === tenths) return;
    tenths = Math.floor(bytesSent / bytesTotal * 10);
    WScript.Echo("[" + repeated("#", tenths) + repeated(".", 10 - tenths) + "] " + tenths * 10 + " %");
};
var ended = 0;
mail.OnStatusChangeHandler = function (number, status) {
    if (status >= MailStatusSent) ++ended;
    WScript.Echo("Message " + number + " " + words[status]);
};

mail.SendAsync(compose("A long one", repeated(repeated("*", 62) + "\r\n", 32000)), true);
while (ended < 1) WScript.Sleep(50);
var i;
for (i = 1; i <= 10; ++i) mail.SendAsync(compose("Short one " + i, "Dinner at eight?"), true);
while (ended < 11) WScript.Sleep(50);

var failed = 0;
for (i = 1; i <= 11; ++i) {
    if (mail.GetStatus(i) === MailStatusSent) continue;
    ++failed;
    WScript.Echo("Message " + i + ": " + mail.GetErrorCode(i) + " " + mail.GetErrorDescription(i));
}
WScript.Echo(11 - failed + " of 11 messages sent.");
if (failed > 0) WScript.Quit(1);
