' Why is nothing found? The likely reasons, the most likely first.

Module WhyNothing
  ' One sentence; "" when something was found. `folder` is where the query looks, Nil for everywhere.
  Function Reason(query As MDQueryQTX, folder As FolderItem) As String
    If query.Handle = 0 Then Return "The expression is wrong."
    If query.ResultCount > 0 Then Return ""
    If folder <> Nil And Not folder.Exists Then Return "The folder " + folder.Name + " is not there."
    If Not query.IsGatheringComplete Then Return "The query has not finished gathering."
    If folder <> Nil And Not IsIndexed(folder) Then Return "Nothing in " + folder.Name + " is indexed."
    If HasAccents(query.QueryString) Then
      Return "Accents can be written in one or in two characters; a d behind the text makes them not matter."
    End If
    Return "No file fits."
  End Function

  ' Whether anything at all can be found there.
  Function IsIndexed(folder As FolderItem) As Boolean
    Dim everything As New MDQueryQTX("kMDItemFSName == '*'")
    Dim folders() As FolderItem = Array(folder)
    Dim noNames() As String
    everything.SetSearchScope(folders, noNames)
    everything.SetMaxCount(1)
    Return everything.Execute(MDQueryQTX.kMDQuerySynchronous) And everything.ResultCount > 0
  End Function

  Function HasAccents(text As String) As Boolean
    For position As Integer = 1 To Len(text)
      If Asc(Mid(text, position, 1)) > 127 Then Return True
    Next
    Return False
  End Function
End Module
