/* <@text:anchor#overview> */
CREATE TABLE columns (
    title varchar(40) PRIMARY KEY,
    width integer NOT NULL DEFAULT 12 -- <@control:slider#width [35,37] {"min":1,"max":40}>
);

INSERT INTO columns (title) VALUES ('name'), ('date');
INSERT INTO columns (title, width) VALUES ('size', 8);

-- <@task#sum>
SELECT count(*) AS number,
       sum(width) + 2 * (count(*) - 1) AS total -- <@output#total [42,47] {"format":"short"}>
-- <@task#sum>
FROM columns
WHERE width > 0;

-- <@appendix>
-- <@task#sum {"uniqueId":"sum-1","taskClassDefFile":"sum.json","text":"Add up the widths","run":"auto","collapsed":"false"}>
