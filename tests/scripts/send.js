// Sends to a server that keeps its messages as files: send.js port folder.
function person(address) {
    var result = new ActiveXObject("Quorvane.MailAddress");
    result.Address = address;
    return result;
}

var mail = new ActiveXObject("Quorvane.SmtpMail");
mail.SmtpServer = "127.0.0.1";
mail.SmtpPort = WScript.Arguments(0);

var message = new ActiveXObject("Quorvane.MailMessage");
message.Sender = person("Ann <ann@example.org>");
message.AddRecipient(person("bob@example.org"));
message.MessageSubject = "From JScript";
message.MessageBody = "text\r\n";
message.AltMessageBody = "alternative\r\n";

// Scripts of this language can't receive the text: what they pass for it only has to be there.
equal("code, null for the text", mail.SendScriptable(message, true, null), 0);
equal("code, a string for the text", mail.SendScriptable(message, true, "unchanged"), 0);
equal("text of the last error", mail.GetLastErrorDescription(), "");

var received = WScript.ReadFile(WScript.Arguments(1) + "/0001.eml");
equal("structure", /\r\nContent-Type: multipart\/alternative;/i.test(received), true);
equal("subject", received.indexOf("\r\nSubject: From JScript\r\n") >= 0, true);

finish();
