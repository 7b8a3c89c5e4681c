' A search that gives up in time. Make a subclass and handle nothing but Done; or look at IsComplete and the results after
' it.

Class TimedSearch
  Inherits MDQueryQTX

  Dim IsOver As Boolean
  Dim IsComplete As Boolean
  Dim limit As Timer

  ' False when the search could not be started.
  Function Start(milliseconds As Integer) As Boolean
    limit = New Timer
    limit.Period = milliseconds
    AddHandler limit.Action, AddressOf TimeIsUp
    limit.Mode = Timer.ModeSingle
    Return Self.Execute(0)
  End Function

  Event Finish()
    EndWith(True)
  End Event

  Sub TimeIsUp(sender As Timer)
    Self.Stop
    EndWith(False)
  End Sub

  Sub EndWith(complete As Boolean)
    If IsOver Then Return
    IsOver = True
    IsComplete = complete
    limit.Mode = Timer.ModeOff
    limit = Nil
    Done
  End Sub

  ' What to do when the search is over, found everything or not.
  Sub Done()
  End Sub
End Class
