// Sends two files.
//
//     cscript attachments.js server [port]

var files = new ActiveXObject("Scripting.FileSystemObject");
var folder = files.BuildPath(files.GetParentFolderName(WScript.ScriptFullName), "sample");

var mail = new ActiveXObject("Quorvane.SmtpMail");
mail.SmtpServer = WScript.Arguments(0);
if (WScript.Arguments.length > 1) mail.SmtpPort = Number(WScript.Arguments(1));

// Paths are separated by semicolons; names may hold blanks and commas.
var code = mail.SimpleSendAttachmentScriptable("Zoe <zoe@bjork.example>",
    "ann@example.org",
    "Programme and menu",
    "Both are attached.",
    files.BuildPath(folder, "programme.pdf") + "; " + files.BuildPath(folder, "menu.csv"),
    null);

if (code !== 0) {
    WScript.Echo("Not sent (" + code + "): " + mail.GetLastErrorDescription());
    WScript.Quit(1);
}
WScript.Echo("Sent.");
