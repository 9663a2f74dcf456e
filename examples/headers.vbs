' Sends a message with what else a header can say: where replies go, a high priority, a wish for a
' read receipt, and fields of its own.
'
'     cscript headers.vbs server [port]

Option Explicit

Const MailPriorityHigh = 1

Function Address(text)
    Set Address = CreateObject("Quorvane.MailAddress")
    Address.Address = text
End Function

Dim message
Set message = CreateObject("Quorvane.MailMessage")
message.SetSender Address("Zoe <zoe@bjork.example>")
message.AddRecipient Address("Ann Miller <ann@example.org>")
message.MessageSubject = "Tonight"
message.MessageBody = "Dinner at eight?"

message.SetReplyTo Address("Desk <desk@bjork.example>")
message.MessagePriority = MailPriorityHigh
message.RequestReadReceipt = True
message.AddHeader "List-Unsubscribe", "<mailto:desk@bjork.example?subject=unsubscribe>"
message.AddHeader "X-Campaign", "Midsummer"

Dim mail, code, text
Set mail = CreateObject("Quorvane.SmtpMail")
mail.SmtpServer = WScript.Arguments(0)
If WScript.Arguments.Count > 1 Then mail.SmtpPort = CLng(WScript.Arguments(1))

code = mail.SendScriptable(message, True, text)
If code <> 0 Then
    WScript.Echo "Not sent (" & code & "): " & text
    WScript.Quit 1
End If
WScript.Echo "Sent."
