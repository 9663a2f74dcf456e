' A message takes copies of what it is given, and hands out new objects.

' E_INVALIDARG without error information, in the engine's own words.
Const invalidCall = 5
Const noInformation = "Invalid procedure call or argument"
Const engine = "Microsoft VBScript runtime error"

Function Person(name, address)
    Set Person = CreateObject("Quorvane.MailAddress")
    Person.Name = name
    Person.Address = address
End Function

Dim message, ann, other
Set message = CreateObject("Quorvane.MailMessage")
Equal "name of no sender", message.Sender.Name, ""
Equal "address of no sender", message.Sender.Address, ""
Equal "name of no reply-to", message.ReplyTo.Name, ""

Set ann = Person("", "Ann Miller <ann@example.org>")
message.SetSender ann
ann.Address = "somebody@example.org"
Equal "sender's name, from the address", message.Sender.Name, "Ann Miller"
Equal "sender's address", message.Sender.Address, "ann@example.org"

Set other = message.Sender
other.Name = "Somebody else"
Equal "sender after its copy was changed", message.Sender.Name, "Ann Miller"

message.Sender = Person("Boss", "John [jd@example.org] x")
Equal "name that wins", message.Sender.Name, "Boss"
Equal "address in square brackets", message.Sender.Address, "jd@example.org"

message.SetReplyTo Person("", " replies@example.org ")
Equal "reply-to address, trimmed", message.ReplyTo.Address, "replies@example.org"
Equal "sender beside the reply-to", message.Sender.Address, "jd@example.org"

On Error Resume Next
message.SetSender Nothing
Failed "sender that is nothing", invalidCall, noInformation, engine
message.AddRecipient Nothing
Failed "recipient that is nothing", invalidCall, noInformation, engine
message.AddAttachment Nothing
Failed "attachment that is nothing", invalidCall, noInformation, engine
message.AddHeader "   ", "value"
Failed "header without a name", invalidCall, noInformation, engine
message.AddHeader "X-Tag", ""
Succeeded "header without a value"
message.AddRecipient Person("", "")
Succeeded "recipient without an address"
message.AddAttachment CreateObject("Quorvane.MailAttachment")
Succeeded "attachment without anything"
message.ClearRecipients
message.ClearCcRecipients
message.ClearBccRecipients
message.ClearAttachments
Succeeded "clearing"
On Error GoTo 0

Finish
