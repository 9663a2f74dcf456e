' Queues messages and follows them as events: queue.vbs port folder.

Function Person(address)
    Set Person = CreateObject("Quorvane.MailAddress")
    Person.Address = address
End Function

Dim heard, progress
heard = ""
progress = 0

Sub Mail_OnStatusChange(number, status)
    heard = heard & TypeName(number) & " " & number & " " & TypeName(status) & " " & status & "; "
End Sub

Sub Mail_OnProgress(number, bytesSent, bytesTotal)
    If bytesSent <= progress Then Fail "progress that goes back: " & bytesSent
    progress = bytesSent
    If bytesSent > bytesTotal Then Fail "more than there is: " & bytesSent
End Sub

Dim mail, message, number, waited
Set mail = CreateObject("Quorvane.SmtpMail")
mail.SmtpServer = "127.0.0.1"
mail.SmtpPort = WScript.Arguments(0)
WScript.ConnectObject mail, "Mail_"

Set message = CreateObject("Quorvane.MailMessage")
message.SetSender Person("ann@example.org")
message.AddRecipient Person("bob@example.org")
message.MessageSubject = "Queued"
message.MessageBody = String(20000, "x")

number = mail.SendAsync(message, True)
Equal "number", number, CLng(1)
waited = 0
Do Until InStr(heard, "Long 2; ") > 0 Or waited = 500
    WScript.Sleep 20
    waited = waited + 1
Loop
Equal "events", heard, "Long 1 Long 1; Long 1 Long 2; "
Equal "status", CLng(mail.GetStatus(number)), CLng(2)
Equal "size of the queue", mail.GetQueueSize, CLng(0)
If progress <= 20000 Then Fail "progress of the last piece: " & progress
If InStr(WScript.ReadFile(WScript.Arguments(1) & "/0001.eml"), "Subject: Queued") = 0 Then Fail "it has not arrived"

mail.Cancel number
On Error Resume Next
mail.Cancel 2
Failed "cancelling a number never given", &H80070057, "Invalid message number", "Quorvane.SmtpMail.1"
On Error GoTo 0

Finish
