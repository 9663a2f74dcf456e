' Queues a hundred mails, shows now and then how many are left, and tells of those that failed.
'
'     cscript hundred.vbs server [port]

Option Explicit

Const MailStatusSent = 2

Function Address(text)
    Set Address = CreateObject("Quorvane.MailAddress")
    Address.Address = text
End Function

Dim mail
Set mail = CreateObject("Quorvane.SmtpMail")
mail.SmtpServer = WScript.Arguments(0)
If WScript.Arguments.Count > 1 Then mail.SmtpPort = CLng(WScript.Arguments(1))
mail.MaxThreads = 10

Dim message, i, numbers(100)
For i = 1 To 100
    Set message = CreateObject("Quorvane.MailMessage")
    message.SetSender Address("Zoe <zoe@bjork.example>")
    message.AddRecipient Address("reader" & i & "@example.org")
    message.MessageSubject = "Midsummer"
    message.MessageBody = "Dinner at eight?"
    numbers(i) = mail.SendAsync(message, True)
Next

Dim waiting, shown
shown = 100
Do
    waiting = mail.GetQueueSize
    If waiting <= shown - 20 Then
        WScript.Echo waiting & " left"
        shown = waiting
    End If
    If waiting = 0 Then Exit Do
    WScript.Sleep 50
Loop

Dim failed
For i = 1 To 100
    If mail.GetStatus(numbers(i)) <> MailStatusSent Then
        failed = failed + 1
        WScript.Echo "reader" & i & ": " & mail.GetErrorCode(numbers(i)) & " " & _
            mail.GetErrorDescription(numbers(i))
    End If
Next
WScript.Echo 100 - failed & " of 100 messages sent."
If failed > 0 Then WScript.Quit 1
