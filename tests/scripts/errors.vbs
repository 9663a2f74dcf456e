' What a script sees when a send is refused before it is tried, and when it fails.

Const source = "Quorvane.SmtpMail.1"
Const engine = "Microsoft VBScript runtime error"  ' for errors without information
Const invalidArgument = &H80070057

Function Person(address)
    Set Person = CreateObject("Quorvane.MailAddress")
    Person.Address = address
End Function

Dim mail, message, attachment, code, text
Set mail = CreateObject("Quorvane.SmtpMail")
Set message = CreateObject("Quorvane.MailMessage")

On Error Resume Next

code = mail.SendScriptable(message, True, text)
Failed "no sender", invalidArgument, "Sender address can't be empty", source

message.SetSender Person("ann@example.org")
code = mail.SendScriptable(message, True, text)
Failed "no recipient", invalidArgument, "Message must have at least one recipient", source

message.AddBccRecipient Person("bob@example.org")
code = mail.SendScriptable(message, True, text)
Failed "no server", invalidArgument, _
    "SmtpServer property can't be empty if useSmtpServer parameter is true", source

Set attachment = CreateObject("Quorvane.MailAttachment")
attachment.File = "C:\no such file.txt"
message.AddAttachment attachment
code = mail.SendScriptable(message, True, text)
Failed "missing attachment", invalidArgument, _
    "Couldn't open attachment file C:\no such file.txt", source
message.ClearAttachments

' A script has no memory block to give; a number must not be taken for one.
attachment.LoadFromMemory CByte(5), 1000
Failed "a number for a block", 13, "Type mismatch", engine

code = mail.SendScriptable(Nothing, True, text)
Failed "no message", 5, "Invalid procedure call or argument", engine
code = mail.SendScriptable(mail, True, text)
Failed "a message that is none", 430, "Class doesn't support Automation", engine

Equal "last error code of sends that weren't tried", mail.GetLastErrorCode, CLng(0)
Equal "last error text of sends that weren't tried", mail.GetLastErrorDescription, ""

' Nothing listens on port 1.
mail.SmtpServer = "127.0.0.1"
mail.SmtpPort = 1
mail.ConnectAttempts = 1
code = mail.SendScriptable(message, True, text)
Succeeded "send to a port that refuses"
Equal "its code", CLng(code), CLng(-1)
Equal "its text", text, "Could not connect to mail server 127.0.0.1, connection refused."
Equal "last error code", mail.GetLastErrorCode, CLng(-1)
Equal "last error text", mail.GetLastErrorDescription, text

' A send that isn't tried clears the outcome of the one before.
mail.SmtpServer = ""
code = mail.SendScriptable(message, True, text)
Failed "no server any more", invalidArgument, _
    "SmtpServer property can't be empty if useSmtpServer parameter is true", source
Equal "last error code after it", mail.GetLastErrorCode, CLng(0)
Equal "last error text after it", mail.GetLastErrorDescription, ""

Finish
