' Sends a short text and tells every kind of failure apart.
'
'     cscript errors.vbs server port recipients

Option Explicit

' What became of a send: the number of the run-time error, if there was one, and the outcome.
Sub Explain(number, description, code, text)
    If number <> 0 Then
        ' Nothing was tried: the program has to be mended, or its settings.
        WScript.Echo "Wrong use: " & description
        WScript.Quit 2
    ElseIf code = 0 Then
        WScript.Echo "Sent."
        WScript.Quit 0
    ElseIf code = -1 Then
        ' No connection, no answer, or no sense in it.
        WScript.Echo "Something broke on the way: " & text
    ElseIf code >= 500 Then
        WScript.Echo "The server refuses this message: " & text
    Else
        WScript.Echo "The server can't take it now, try again later: " & text
    End If
    WScript.Quit 1
End Sub

Dim mail, code, text
Set mail = CreateObject("Quorvane.SmtpMail")
mail.SmtpServer = WScript.Arguments(0)
mail.SmtpPort = CLng(WScript.Arguments(1))
mail.ConnectAttempts = 1
mail.ReplyTimeout = 20

On Error Resume Next
code = mail.SimpleSendScriptable("zoe@bjork.example", WScript.Arguments(2), "Tonight", _
    "Dinner at eight?", text)
Explain Err.Number, Err.Description, code, text
