// Every property of every class, late bound: its default, and values that it is given.
// Each row: name, default, then values that must be read back as they were set.
var longText = new Array(10001).join("x");
var wideText = "Zo\u00EB \u20AC \uD83D\uDE00";

var classes = {
    "Quorvane.SmtpMail": [
        ["SmtpServer", "", "mail.example.org", wideText, ""],
        ["SmtpPort", 25, 2525, 0, -1, 2147483647],
        ["SmtpUsername", "", "ann", ""],
        ["SmtpPassword", "", "se cret", ""],
        ["MaxThreads", 5, 1, 9],
        ["SenderHostname", "", "client.example.org", ""],
        ["SmtpSPA", false, true, false],
        ["SmtpSSL", false, true, false],
        ["ConnectAttempts", 2, 7, 0, -3],
        ["ReplyTimeout", 30, 1, 600]
    ],
    "Quorvane.MailMessage": [
        ["MessageSubject", "", "Hello", wideText, ""],
        ["MessageBody", "", "Line\r\nline\n.\n", longText, ""],
        ["MessageBodyFormat", 0, 1, 77, -1, 0],
        ["AltMessageBody", "", wideText, ""],
        ["MessageBodyEncoding", 0, 1, 2, 3, 4, 99],
        ["MessageBodyCharset", "", "koi8-r", ""],
        ["AltMessageBodyEncoding", 0, 4, -7],
        ["AltMessageBodyCharset", "", "utf-8", ""],
        ["MessagePriority", 3, 1, 2, 5, 1000],
        ["MessageId", "", "1@x", ""],
        ["MessageBodyFile", "", "C:\\no such file", ""],
        ["RequestReadReceipt", false, true, false]
    ],
    "Quorvane.MailAddress": [
        ["Name", "", "Ann", wideText, ""],
        ["Address", "", " Ann <ann@example.org> ", wideText, ""]
    ],
    "Quorvane.MailAttachment": [
        ["Name", "", "report.pdf", wideText, ""],
        ["File", "", "C:\\no such file", ""],
        ["Encoding", 4, 0, 1, 2, 3, 99, -1],
        ["ContentType", "", "application/pdf", ""],
        ["Charset", "", "utf-8", ""],
        ["Inline", false, true, false],
        ["ContentId", "", "logo@example.org", ""]
    ]
};

for (var progId in classes) {
    var object = new ActiveXObject(progId);
    var versioned = new ActiveXObject(progId + ".1");
    for (var i = 0; i < classes[progId].length; ++i) {
        var row = classes[progId][i];
        var what = progId + "." + row[0];
        equal(what + " at first", object[row[0]], row[1]);
        for (var j = 2; j < row.length; ++j) {
            object[row[0]] = row[j];
            equal(what, object[row[0]], row[j]);
        }
        equal(what + " of another object", versioned[row[0]], row[1]);
    }
}

// Values that are not stored as they are given.
var mail = new ActiveXObject("Quorvane.SmtpMail");
var changed = [
    ["ReplyTimeout", 0, 30], ["ReplyTimeout", -5, 30], ["MaxThreads", 0, 1], ["MaxThreads", -2, 1],
    ["SmtpPort", "2526", 2526], ["SmtpSSL", 1, true], ["SmtpServer", 17, "17"],
    ["SmtpServer", "before\0after", "before"]
];
for (var k = 0; k < changed.length; ++k) {
    mail[changed[k][0]] = changed[k][1];
    equal(changed[k][0] + " set to " + changed[k][1], mail[changed[k][0]], changed[k][2]);
}

raises("SmtpPort set to a word", 0x80020005, null, function () { mail.SmtpPort = "word"; });
equal("SmtpPort after that", mail.SmtpPort, 2526);
equal("a member that isn't there", typeof mail.NoSuchMember, "undefined");
equal("names without regard to case", mail.smtpport, 2526);

equal("GetLastErrorCode at first", mail.GetLastErrorCode(), 0);
equal("GetLastErrorDescription at first", mail.GetLastErrorDescription(), "");

finish();
