// Sends the sample message: an HTML body with a picture inside it, the same as plain text for
// readers without HTML, and two attachments.
//
//     cscript send.js server [port]

var MailFormatHtml = 1;

var files = new ActiveXObject("Scripting.FileSystemObject");
var folder = files.BuildPath(files.GetParentFolderName(WScript.ScriptFullName), "sample");

function readText(name) {
    var stream = files.OpenTextFile(files.BuildPath(folder, name));
    var text = stream.ReadAll();
    stream.Close();
    return text;
}

function person(name, address) {
    var result = new ActiveXObject("Quorvane.MailAddress");
    result.Name = name;
    result.Address = address;
    return result;
}

function fileToAttach(file, contentType, name) {
    var result = new ActiveXObject("Quorvane.MailAttachment");
    result.File = files.BuildPath(folder, file);
    result.ContentType = contentType;
    result.Name = name;
    return result;
}

function compose() {
    var message = new ActiveXObject("Quorvane.MailMessage");
    message.SetSender(person("Zo\u00EB Bj\u00F6rk", "zoe@bjork.example"));
    message.AddRecipient(person("Ann Miller", "ann@example.org"));
    message.AddCcRecipient(person("", "music@example.org"));
    message.AddBccRecipient(person("", "archive@bjork.example"));
    message.MessageSubject = "Midsummer at Caf\u00E9 Bj\u00F6rk \u2013 programme and menu";

    message.MessageBodyFormat = MailFormatHtml;
    message.MessageBody = readText("body.html");
    message.AltMessageBody = readText("body.txt");

    var picture = fileToAttach("logo.png", "image/png", "logo.png");
    picture.Inline = true;
    picture.ContentId = "logo@bjork.example";
    message.AddAttachment(picture);

    message.AddAttachment(fileToAttach("programme.pdf", "application/pdf", "programme.pdf"));

    var menu = fileToAttach("menu.csv", "text/csv", "Men\u00FC.csv");
    menu.Charset = "utf-8";
    message.AddAttachment(menu);
    return message;
}

if (WScript.Arguments.length < 1) {
    WScript.Echo("Usage: cscript send.js server [port]");
    WScript.Quit(2);
}

var mail = new ActiveXObject("Quorvane.SmtpMail");
mail.SmtpServer = WScript.Arguments(0);
if (WScript.Arguments.length > 1) mail.SmtpPort = Number(WScript.Arguments(1));

// JScript can't receive values through parameters; the outcome's text is asked for instead.
var code = mail.SendScriptable(compose(), true, null);
if (code !== 0) {
    WScript.Echo("Not sent (" + code + "): " + mail.GetLastErrorDescription());
    WScript.Quit(1);
}
WScript.Echo("Sent.");
