' Sends in the background: a large mail with a bar that shows how far it is, then ten small ones
' whose status is told as it changes.
'
'     cscript queue.vbs server [port]

Option Explicit

Const MailStatusSent = 2

Dim words
words = Array("is queued", "is being sent", "was sent", "was not sent", "was cancelled")

Function Address(text)
    Set Address = CreateObject("Quorvane.MailAddress")
    Address.Address = text
End Function

Function Compose(subject, body)
    Set Compose = CreateObject("Quorvane.MailMessage")
    Compose.SetSender Address("Zoe <zoe@bjork.example>")
    Compose.AddRecipient Address("Ann Miller <ann@example.org>")
    Compose.MessageSubject = subject
    Compose.MessageBody = body
End Function

' Lines enough for that many kilobytes.
Function LongText(kilobytes)
    Dim line, i
    line = String(62, "*") & vbCrLf
    LongText = line
    For i = 1 To 4
        LongText = LongText & LongText
    Next
    LongText = Replace(String(kilobytes, "k"), "k", LongText)
End Function

' The two events. They arrive while WScript.Sleep waits.
Dim tenths, ended
tenths = 0
ended = 0

Sub Mail_OnProgress(number, bytesSent, bytesTotal)
    If Int(bytesSent / bytesTotal * 10) = tenths Then Exit Sub
    tenths = Int(bytesSent / bytesTotal * 10)
    WScript.Echo "[" & String(tenths, "#") & String(10 - tenths, ".") & "] " & tenths * 10 & " %"
End Sub

Sub Mail_OnStatusChange(number, status)
    If status >= MailStatusSent Then ended = ended + 1
    WScript.Echo "Message " & number & " " & words(status)
End Sub

Dim mail, i, failed
Set mail = CreateObject("Quorvane.SmtpMail")
mail.SmtpServer = WScript.Arguments(0)
If WScript.Arguments.Count > 1 Then mail.SmtpPort = CLng(WScript.Arguments(1))
WScript.ConnectObject mail, "Mail_"

mail.SendAsync Compose("A long one", LongText(2000)), True
Do While ended < 1
    WScript.Sleep 50
Loop
For i = 1 To 10
    mail.SendAsync Compose("Short one " & i, "Dinner at eight?"), True
Next
Do While ended < 11
    WScript.Sleep 50
Loop

failed = 0
For i = 1 To 11
    If mail.GetStatus(i) <> MailStatusSent Then
        failed = failed + 1
        WScript.Echo "Message " & i & ": " & mail.GetErrorCode(i) & " " & mail.GetErrorDescription(i)
    End If
Next
WScript.Echo 11 - failed & " of 11 messages sent."
If failed > 0 Then WScript.Quit 1
