// Queues messages and follows them with functions of the script: queue.js port folder.
function person(address) {
    var result = new ActiveXObject("Quorvane.MailAddress");
    result.Address = address;
    return result;
}

var mail = new ActiveXObject("Quorvane.SmtpMail");
mail.SmtpServer = "127.0.0.1";
mail.SmtpPort = WScript.Arguments(0);

var heard = [];
mail.OnStatusChangeHandler = function (number, status) {
    heard.push(typeof number + " " + number + " " + typeof status + " " + status);
};
var current = 0, sent = 0, last = 0;
mail.OnProgressHandler = function (number, bytesSent, bytesTotal) {
    if (number !== current) {
        current = number;
        sent = 0;
    }
    if (bytesSent <= sent) fail("progress that goes back: " + bytesSent);
    sent = bytesSent;
    last = bytesTotal;
};
raises("a text as handler", 0x80070057, null, function () { mail.OnStatusChangeHandler = "text"; });
raises("a number never given", 0x80070057, "Invalid message number", function () { mail.GetStatus(1); });

var message = new ActiveXObject("Quorvane.MailMessage");
message.Sender = person("ann@example.org");
message.AddRecipient(person("bob@example.org"));
message.MessageBody = new Array(20001).join("x");

equal("first number", mail.SendAsync(message, true), 1);
for (var waited = 0; heard.length < 2 && waited < 500; ++waited) WScript.Sleep(20);
equal("events", heard.join("; "), "number 1 number 1; number 1 number 2");
equal("status", mail.GetStatus(1), 2);
equal("code", mail.GetErrorCode(1), 0);
equal("text", mail.GetErrorDescription(1), "");
equal("size of the queue", mail.GetQueueSize(), 0);
equal("bytes sent at last", sent, last);
equal("more than the body", last > 20000, true);

// A function may queue, and take itself away.
mail.OnStatusChangeHandler = function (number, status) {
    heard.push(number + " " + status);
    if (number === 2 && status === 2) equal("queued in the handler", mail.SendAsync(message, true), 3);
    if (number === 3 && status === 1) {
        mail.Cancel(2);
        mail.CancelAll();
    }
};
heard = [];
mail.SendAsync(message, true);
for (waited = 0; mail.GetQueueSize() > 0 || heard.length < 4; ++waited) {
    if (waited === 500) break;
    WScript.Sleep(20);
}
equal("first events", heard.slice(0, 3).join("; "), "2 1; 2 2; 3 1");
equal("last event", heard[3] === "3 2" || heard[3] === "3 4", true);

finish();
