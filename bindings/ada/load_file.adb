--  Loads an input file and prints what its cards set.
--
--     load_file INPUT-FILE

with Ada.Command_Line;
with Ada.Exceptions;
with Ada.Text_IO;
with Corvale;

procedure Load_File is
   use Ada.Text_IO;
   use type Corvale.Real64;

   procedure Show (Name : String) is
   begin
      Corvale.Open;
      Corvale.Load_File (Name);
      Put_Line ("element-set key mode" & Corvale.Elset_Key_Mode'Image
                & ", all-key mode" & Corvale.All_Key_Mode'Image);
      declare
         Values : constant Corvale.Real64_Array := Corvale.MOIC_Data (128);
      begin
         for K in Values'Range loop
            if Values (K) /= 0.0 then
               Put_Line ("MOIC(" & K'Image & " ) =" & Values (K)'Image);
            end if;
         end loop;
      end;
   end Show;

begin
   if Ada.Command_Line.Argument_Count = 1 then
      Show (Ada.Command_Line.Argument (1));
   else
      Put_Line (Standard_Error, "usage: load_file INPUT-FILE");
      Ada.Command_Line.Set_Exit_Status (2);
   end if;
exception
   when Error : Corvale.Corvale_Error | Corvale.Text_Error | Corvale.Load_Error =>
      Put_Line (Standard_Error, Ada.Exceptions.Exception_Message (Error));
      Ada.Command_Line.Set_Exit_Status (2);
end Load_File;
