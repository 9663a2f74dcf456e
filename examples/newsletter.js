// Sends an HTML file with the pictures that it shows, and the same as plain text for readers
// without HTML.
//
//     cscript newsletter.js server [port]

var files = new ActiveXObject("Scripting.FileSystemObject");
var folder = files.BuildPath(files.GetParentFolderName(WScript.ScriptFullName), "newsletter");

function address(text) {
    var result = new ActiveXObject("Quorvane.MailAddress");
    result.Address = text;
    return result;
}

var message = new ActiveXObject("Quorvane.MailMessage");
message.SetSender(address("Zoe <zoe@bjork.example>"));
message.AddRecipient(address("Ann Miller <ann@example.org>"));
message.MessageSubject = "Midsummer";
message.ImportHTML(files.BuildPath(folder, "newsletter.html"));
message.AltMessageBody = files.OpenTextFile(files.BuildPath(folder, "newsletter.txt")).ReadAll();

var mail = new ActiveXObject("Quorvane.SmtpMail");
mail.SmtpServer = WScript.Arguments(0);
if (WScript.Arguments.length > 1) mail.SmtpPort = Number(WScript.Arguments(1));

// JScript can't receive values through parameters; the outcome's text is asked for instead.
var code = mail.SendScriptable(message, true, null);
if (code !== 0) {
    WScript.Echo("Not sent (" + code + "): " + mail.GetLastErrorDescription());
    WScript.Quit(1);
}
WScript.Echo("Sent.");
