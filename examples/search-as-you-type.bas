' Search as you type: each letter starts a new query, and the one before is let go.

Class NameSearch
  Inherits MDQueryQTX

  Dim typed As String

  Event Finish()
    Dim names() As String
    For Each item As MDItemQTX In Self.Results
      names.Append(item.FSName)
    Next
    names.Sort
    If names.UBound < 0 Then names.Append("nothing")
    Print typed + ": " + Join(names, ", ")
    TypeNext
  End Event
End Class

Dim Current As NameSearch
Dim Letters As Integer
Const kTyped = "let*"

Sub TypeNext()
  Letters = Letters + 1
  If Letters <= Len(kTyped) Then Search(Left(kTyped, Letters))
End Sub

' Call it whenever the text in your search field has changed.
Sub Search(typed As String)
  If Current <> Nil Then Current.Stop
  Current = New NameSearch(QueryText.Contains(MDItemQTX.kMDItemFSName, typed))
  Current.typed = typed
  Dim folders() As FolderItem = Array(SpecialFolder.Documents)
  Dim noNames() As String
  Current.SetSearchScope(folders, noNames)
  If Not Current.Execute(0) Then Print "The search could not be started."
End Sub

Sub Main(args() As String)
  TypeNext
End Sub

' It prints:
'   l: holiday.png, letter.txt, Travel
'   le: letter.txt
'   let: letter.txt
'   let*: nothing
