' Creates one object of each class under both of its names.
Dim name
For Each name In Array("SmtpMail", "MailMessage", "MailAddress", "MailAttachment")
    CreateObject "Quorvane." & name
    CreateObject "Quorvane." & name & ".1"
Next
