' Watch a folder: a list on the screen that follows what happens. The folder is one of the program's own, and the program
' makes the changes itself.

Class Watcher
  Inherits MDQueryQTX

  Dim list As New ResultList

  Event Finish()
    list.Fill(Self)
    Print Str(list.Items.UBound + 1) + " texts"
    Folder.Child("second.txt").Delete
    Write("third.txt")
  End Event

  Event Update(AddedItems() As MDItemQTX, ChangedItems() As MDItemQTX, RemovedItems() As MDItemQTX)
    For Each change As String In list.Follow(Self, AddedItems, ChangedItems)
      Print change
    Next
    CleanUp
    Quit
  End Event
End Class

Dim Folder As FolderItem
Dim Watch As Watcher

Sub Write(name As String)
  Dim out As TextOutputStream = TextOutputStream.Create(Folder.Child(name))
  out.WriteLine("news")
  out.Close
End Sub

Sub CleanUp()
  While Folder.Count > 0
    Folder.Item(1).Delete
  Wend
  Folder.Delete
End Sub

Sub Main(args() As String)
  Folder = SpecialFolder.Temporary.Child("watched " + Format(Microseconds, "0"))
  Folder.CreateAsFolder
  Write("first.txt")
  Write("second.txt")

  Dim lists() As String
  Dim order() As String = Array(MDItemQTX.kMDItemFSName)
  Watch = New Watcher(QueryText.EndsWith(MDItemQTX.kMDItemFSName, ".txt"), lists, order)
  Dim folders() As FolderItem = Array(Folder)
  Dim noNames() As String
  Watch.SetSearchScope(folders, noNames)
  If Not Watch.Execute(MDQueryQTX.kMDQueryWantsUpdates) Then Print "The query could not be started."
End Sub

' It prints:
'   2 texts
'   remove 1
'   insert 1
