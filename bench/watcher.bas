' A live query that tells how many items each event brings. ./dev bench run and ./dev bench burst read what it prints.
'
'   watcher.bas FOLDER NUMBER MILLISECONDS     how many changes make an update, and how long one waits for more

Class Watcher
  Inherits MDQueryQTX

  Event Finish()
    Print "finish " + Str(Self.ResultCount)
  End Event

  Event Update(AddedItems() As MDItemQTX, ChangedItems() As MDItemQTX, RemovedItems() As MDItemQTX)
    Print "update " + Str(Ubound(AddedItems) + 1) + " " + Str(Ubound(ChangedItems) + 1) + " " + Str(Ubound(RemovedItems) + 1)
  End Event
End Class

Dim Watch As Watcher

Sub Main(args() As String)
  Watch = New Watcher("kMDItemFSName == '*'")
  Dim folders() As FolderItem = Array(New FolderItem(args(0)))
  Dim noNames() As String
  Watch.SetSearchScope(folders, noNames)
  Dim batching As MDQueryBatchingParamsQTX = Watch.BatchingParameters
  batching.progressMaxNum = 100000
  batching.updateMaxNum = Val(args(1))
  batching.updateMaxMS = Val(args(2))
  Watch.BatchingParameters = batching
  If Not Watch.Execute(MDQueryQTX.kMDQueryWantsUpdates) Then
    Print "not started"
  End If
End Sub
