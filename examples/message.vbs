' Sends a short text to its sender, put together from objects, in as few lines as can be.
'
'     cscript message.vbs server port

Set who = CreateObject("Quorvane.MailAddress") : who.Address = "Jo Doe <jo@example.com>"
Set message = CreateObject("Quorvane.MailMessage") : message.SetSender who : message.AddRecipient who
message.MessageSubject = "Tonight" : message.MessageBody = "Dinner at eight?"
Set mail = CreateObject("Quorvane.SmtpMail") : mail.SmtpServer = WScript.Arguments(0) : mail.SmtpPort = WScript.Arguments(1)
If mail.SendScriptable(message, True, text) <> 0 Then WScript.Echo text
